// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/InspectorPage.h"

#include "ui/common/Card.h"
#include "ui/common/SymbolView.h"
#include "ui/common/TextLabel.h"

#include <QHBoxLayout>
#include <QScrollBar>
#include <QVBoxLayout>

namespace nightjar {

InspectorHeader::InspectorHeader(QWidget* parent)
    : QWidget(parent),
      m_symbol(new SymbolView({}, 34, Tint::secondary)),
      m_name(new ElidedLabel(TextSize::title)),
      m_caption(new ElidedLabel(TextSize::caption, Tint::secondary)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(12);
    layout->addWidget(m_symbol);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(1);
    texts->addWidget(m_name);
    texts->addWidget(m_caption);
    layout->addLayout(texts, 1);
}

void InspectorHeader::show(const QString& symbol, Tint tint, const QString& name, const QString& caption) {
    m_symbol->show(symbol, tint);
    m_name->setFullText(name);
    m_caption->setFullText(caption);
    setAccessibleName(name);
    setAccessibleDescription(caption);
}

InspectorPage::InspectorPage(QWidget* parent) : QScrollArea(parent), m_header(new InspectorHeader) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    verticalScrollBar()->setSingleStep(16);
    auto* body = new QWidget;
    m_column = new QVBoxLayout(body);
    m_column->setContentsMargins(16, 16, 16, 16);
    m_column->setSpacing(16);
    m_column->addWidget(m_header);
    m_column->addStretch();
    setWidget(body);
    for (QWidget* ground : {static_cast<QWidget*>(this), viewport(), body})
        ground->setAutoFillBackground(false);
}

Card* InspectorPage::addCard(const QString& title) {
    auto* card = new Card(title);
    addWidget(card);
    return card;
}

void InspectorPage::addWidget(QWidget* widget) {
    m_column->insertWidget(m_column->count() - 1, widget);
}

QWidget* InspectorPage::addButtons(const QList<QWidget*>& buttons) {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    for (QWidget* button : buttons)
        layout->addWidget(button, 1);
    addWidget(row);
    return row;
}

} // namespace nightjar
