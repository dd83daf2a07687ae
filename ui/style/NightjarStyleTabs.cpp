// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/style/NightjarStyle.h"

#include <QPainter>
#include <QStyleOption>

#include <algorithm>

// Tabs look like the segments of a SegmentedControl.

namespace nightjar {

namespace {

constexpr int tabHeight = 30;
constexpr int narrowestTab = 104;
constexpr int spaceBesideTitle = 22;
constexpr int inset = 2;

} // namespace

QSize NightjarStyle::tabSize(const QSize& title) const {
    return {std::max(narrowestTab, title.width() + 2 * spaceBesideTitle),
            std::max(tabHeight, title.height() + 12)};
}

void NightjarStyle::drawTabShape(const QStyleOption* option, QPainter* painter) const {
    const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(option);
    const auto& colors = Colors::of(option->palette);
    const bool isFirst =
        tab->position == QStyleOptionTab::Beginning || tab->position == QStyleOptionTab::OnlyOneTab;
    const bool isLast = tab->position == QStyleOptionTab::End || tab->position == QStyleOptionTab::OnlyOneTab;
    painter->save();
    painter->setClipRect(tab->rect);
    constexpr int beyond = 20; // no round corners where the next tab joins
    paintBox(*painter, tab->rect.adjusted(isFirst ? 0 : -beyond, 0, isLast ? 0 : beyond, 0), 8, colors.track);
    if (tab->state & State_Selected) {
        const QRectF highlight = QRectF(tab->rect).adjusted(inset, inset, -inset, -inset);
        paintBox(*painter, highlight.translated(0, 1), 6, withAlpha(Qt::black, 26));
        paintBox(*painter, highlight, 6, colors.isDark ? colors.control : colors.card);
        if ((tab->state & State_HasFocus) && (tab->state & State_KeyboardFocusChange))
            paintFocusRing(*painter, highlight, 6, colors);
    }
    painter->restore();
}

void NightjarStyle::drawTabLabel(const QStyleOption* option, QPainter* painter) const {
    const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(option);
    const auto& colors = Colors::of(option->palette);
    const bool isSelected = tab->state & State_Selected;
    painter->save();
    QFont font = painter->font();
    font.setWeight(isSelected ? QFont::DemiBold : QFont::Medium);
    painter->setFont(font);
    painter->setPen(isSelected || (tab->state & State_MouseOver) ? colors.text : colors.secondary);
    painter->drawText(tab->rect, Qt::AlignCenter | Qt::TextHideMnemonic, tab->text);
    painter->restore();
}

} // namespace nightjar
