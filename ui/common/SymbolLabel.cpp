// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/SymbolLabel.h"

#include "ui/common/Spoken.h"
#include "ui/common/SymbolView.h"
#include "ui/common/TextLabel.h"

#include <QHBoxLayout>

namespace nightjar {

SymbolLabel::SymbolLabel(TextSize size, QWidget* parent)
    : QWidget(parent),
      m_symbol(new SymbolView({}, QFontMetrics(fontOf(size)).height(), Tint::text)),
      m_text(new TextLabel({}, size)) {
    speakAs(*this, Spoken::text);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(m_symbol);
    layout->addWidget(m_text);
}

void SymbolLabel::show(const QString& symbol, Tint tint, const QString& text) {
    show(symbol, tint, tint, text);
}

void SymbolLabel::show(const QString& symbol, Tint symbolTint, Tint textTint, const QString& text) {
    m_symbol->show(symbol, symbolTint);
    m_text->setTint(textTint);
    if (m_text->text() != text)
        m_text->setText(text);
    setAccessibleName(text);
}

QString SymbolLabel::text() const {
    return m_text->text();
}

QString SymbolLabel::symbol() const {
    return m_symbol->symbol();
}

} // namespace nightjar
