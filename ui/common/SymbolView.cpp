// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/SymbolView.h"

#include "ui/style/Symbols.h"

#include <QPainter>

namespace nightjar {

SymbolView::SymbolView(const QString& symbol, int size, Tint tint, QWidget* parent)
    : QWidget(parent), m_symbol(symbol), m_tint(tint) {
    setFixedSize(size, size);
}

void SymbolView::show(const QString& symbol, Tint tint) {
    if (symbol == m_symbol && tint == m_tint)
        return;
    m_symbol = symbol;
    m_tint = tint;
    update();
}

void SymbolView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    Symbols::paint(painter, rect(), m_symbol, Colors::of(this).tint(m_tint));
}

} // namespace nightjar
