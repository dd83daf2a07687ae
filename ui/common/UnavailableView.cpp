// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/UnavailableView.h"

#include "ui/common/Spoken.h"
#include "ui/common/SymbolView.h"
#include "ui/common/TextLabel.h"

#include <QVBoxLayout>

namespace nightjar {

UnavailableView::UnavailableView(QWidget* parent)
    : QWidget(parent),
      m_symbol(new SymbolView({}, 44, Tint::secondary)),
      m_title(new TextLabel({}, TextSize::title)),
      m_description(new TextLabel({}, TextSize::body, Tint::secondary)) {
    speakAs(*this, Spoken::text);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 24, 24, 24);
    layout->setSpacing(6);
    layout->addStretch(5);
    layout->addWidget(m_symbol, 0, Qt::AlignHCenter);
    layout->addSpacing(6);
    for (auto* text : {m_title, m_description}) {
        text->setAlignment(Qt::AlignHCenter);
        text->setWordWrap(true);
        layout->addWidget(text);
    }
    layout->addStretch(6);
}

void UnavailableView::show(const QString& symbol, const QString& title, const QString& description) {
    m_symbol->show(symbol, Tint::secondary);
    if (m_title->text() != title)
        m_title->setText(title);
    if (m_description->text() != description)
        m_description->setText(description);
    setAccessibleName(title);
    setAccessibleDescription(description);
}

QString UnavailableView::title() const {
    return m_title->text();
}

QString UnavailableView::description() const {
    return m_description->text();
}

} // namespace nightjar
