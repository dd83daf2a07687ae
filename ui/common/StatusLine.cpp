// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/StatusLine.h"

#include "ui/common/Spoken.h"
#include "ui/common/SymbolView.h"
#include "ui/common/TextLabel.h"

#include <QHBoxLayout>

namespace nightjar {

StatusLine::StatusLine(const QString& symbol, QWidget* parent)
    : QWidget(parent), m_text(new ElidedLabel(TextSize::caption, Tint::secondary)) {
    speakAs(*this, Spoken::text);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(18, 6, 16, 10);
    layout->setSpacing(8);
    layout->addWidget(new SymbolView(symbol, 14, Tint::secondary));
    layout->addWidget(m_text, 1);
}

void StatusLine::setText(const QString& text) {
    m_text->setFullText(text);
    setAccessibleName(text);
}

QString StatusLine::text() const {
    return m_text->fullText();
}

} // namespace nightjar
