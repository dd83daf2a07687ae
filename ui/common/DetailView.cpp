// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/DetailView.h"

#include "ui/common/SymbolView.h"
#include "ui/common/TextLabel.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace nightjar {

DetailView::DetailView(QWidget* parent)
    : QWidget(parent),
      m_column(new QVBoxLayout(this)),
      m_symbol(new SymbolView({}, 72, Tint::secondary)),
      m_title(new ElidedLabel(TextSize::largeTitle)) {
    m_column->setContentsMargins(40, 24, 40, 24);
    m_column->setSpacing(6);
    m_column->addStretch(5);
    m_column->addWidget(m_symbol, 0, Qt::AlignHCenter);
    m_column->addSpacing(12);
    m_title->setAlignment(Qt::AlignCenter);
    m_column->addWidget(m_title);
    m_column->addStretch(6);
}

void DetailView::show(const QString& symbol, Tint tint, const QString& title) {
    m_symbol->show(symbol, tint);
    m_title->setFullText(title);
    setAccessibleName(title);
}

QString DetailView::title() const {
    return m_title->fullText();
}

TextLabel* DetailView::addText(TextSize size, Tint tint) {
    auto* text = new TextLabel({}, size, tint);
    text->setAlignment(Qt::AlignHCenter);
    text->setWordWrap(true);
    m_column->insertWidget(m_column->count() - 1, text);
    return text;
}

void DetailView::addSpacing(int height) {
    m_column->insertSpacing(m_column->count() - 1, height);
}

void DetailView::addWidget(QWidget* widget) {
    m_column->insertWidget(m_column->count() - 1, widget, 0, Qt::AlignHCenter);
}

void DetailView::addRow(const QList<QWidget*>& widgets) {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(10);
    for (QWidget* widget : widgets)
        layout->addWidget(widget);
    addWidget(row);
}

} // namespace nightjar
