// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/style/NightjarStyle.h"
#include "ui/style/Symbols.h"

#include <QComboBox>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>

// The controls that take more than a box and a text.

namespace nightjar {

namespace {

constexpr int shortestThumb = 32;

void paintSymbol(QPainter& painter, const QPointF& center, qreal size, const QString& name,
                 const QColor& color) {
    Symbols::paint(painter, QRectF(center - QPointF(size, size) / 2, QSizeF(size, size)), name, color);
}

} // namespace

void NightjarStyle::drawMenuItem(const QStyleOption* option, QPainter* painter, const QWidget* widget) const {
    const auto& colors = Colors::of(option->palette);
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    const QRect& all = option->rect;
    if (item->menuItemType == QStyleOptionMenuItem::Separator) {
        painter->fillRect(QRect(all.left() + 8, all.center().y(), all.width() - 16, 1), colors.hairline);
        return;
    }
    const bool isEnabled = option->state & State_Enabled;
    const bool isSelected = isEnabled && (option->state & State_Selected);
    if (isSelected)
        paintBox(*painter, all, 5, colors.accent);
    const QColor color = isSelected ? colors.onAccent : isEnabled ? colors.text : colors.tertiary;
    int left = 10;
    if (item->checkType != QStyleOptionMenuItem::NotCheckable || qobject_cast<const QComboBox*>(widget)) {
        if (item->checked)
            paintSymbol(*painter, QPointF(all.left() + left + 4, all.center().y() + 0.5), 15,
                        QStringLiteral("checkmark"), color);
        left += 17;
    }
    const QStringList parts = item->text.split(u'\t');
    painter->setFont(item->font);
    painter->setPen(color);
    painter->drawText(all.adjusted(left, 0, -10, 0),
                      Qt::AlignVCenter | Qt::AlignLeft | Qt::TextHideMnemonic | Qt::TextSingleLine,
                      parts.first());
    if (parts.size() > 1) {
        painter->setPen(isSelected ? color : colors.secondary);
        painter->drawText(all.adjusted(0, 0, -10, 0), Qt::AlignVCenter | Qt::AlignRight, parts[1]);
    }
}

QRect NightjarStyle::scrollBarPart(const QStyleOptionComplex* option, SubControl part) const {
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    const bool isVertical = bar->orientation == Qt::Vertical;
    const int length = isVertical ? bar->rect.height() : bar->rect.width();
    const int extent = isVertical ? bar->rect.width() : bar->rect.height();
    const int range = bar->maximum - bar->minimum;
    const int thumb =
        range > 0
            ? std::min(length, std::max(shortestThumb, static_cast<int>(static_cast<qint64>(bar->pageStep) *
                                                                        length / (range + bar->pageStep))))
            : length;
    const int at = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition, length - thumb,
                                           bar->upsideDown);
    const auto rect = [&](int from, int size) {
        return isVertical ? QRect(0, from, extent, size) : QRect(from, 0, size, extent);
    };
    switch (part) {
    case SC_ScrollBarSlider:
        return rect(at, thumb);
    case SC_ScrollBarGroove:
        return rect(0, length);
    case SC_ScrollBarSubPage:
        return rect(0, at);
    case SC_ScrollBarAddPage:
        return rect(at + thumb, length - at - thumb);
    default:
        return {};
    }
}

void NightjarStyle::drawScrollBar(const QStyleOptionComplex* option, QPainter* painter,
                                  const QWidget* widget) const {
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (bar->maximum <= bar->minimum)
        return;
    const bool isHovered = option->state & State_MouseOver;
    const bool isHeld = (bar->activeSubControls & SC_ScrollBarSlider) && (option->state & State_Sunken);
    const qreal inset = isHovered || isHeld ? 2.5 : 3.5;
    const QRectF slider = subControlRect(CC_ScrollBar, option, SC_ScrollBarSlider, widget);
    const QRectF thumb = bar->orientation == Qt::Vertical ? slider.adjusted(inset, 2, -inset, -2)
                                                          : slider.adjusted(2, inset, -2, -inset);
    paintBox(*painter, thumb, std::min(thumb.width(), thumb.height()) / 2,
             withAlpha(Colors::of(option->palette).text, isHeld      ? 130
                                                         : isHovered ? 100
                                                                     : 60));
}

void NightjarStyle::drawSlider(const QStyleOptionComplex* option, QPainter* painter,
                               const QWidget* widget) const {
    const auto& colors = Colors::of(option->palette);
    const QRectF handle = subControlRect(CC_Slider, option, SC_SliderHandle, widget);
    const qreal middle = QRectF(option->rect).center().y();
    const QRectF groove(option->rect.left() + 2, middle - 2, option->rect.width() - 4, 4);
    painter->save();
    if (!(option->state & State_Enabled))
        painter->setOpacity(0.55);
    paintBox(*painter, groove, 2, colors.isDark ? colors.controlBorder : colors.track);
    paintBox(*painter, QRectF(groove.topLeft(), QPointF(handle.center().x(), groove.bottom())), 2,
             colors.accent);
    const QRectF knob(handle.center().x() - 9, middle - 9, 18, 18);
    paintBox(*painter, knob.translated(0, 0.8), 9, withAlpha(Qt::black, 40));
    paintBox(*painter, knob, 9, Qt::white, colors.isDark ? QColor() : colors.controlBorder);
    if ((option->state & State_HasFocus) && (option->state & State_KeyboardFocusChange))
        paintFocusRing(*painter, knob.adjusted(-1, -1, 1, 1), 9, colors);
    painter->restore();
}

void NightjarStyle::drawSpinBox(const QStyleOptionComplex* option, QPainter* painter,
                                const QWidget* widget) const {
    const auto& colors = Colors::of(option->palette);
    const auto* box = qstyleoption_cast<const QStyleOptionSpinBox*>(option);
    painter->save();
    if (!(option->state & State_Enabled))
        painter->setOpacity(0.55);
    paintBox(*painter, option->rect, 7, colors.control, colors.controlBorder);
    for (const auto part : {SC_SpinBoxUp, SC_SpinBoxDown}) {
        const bool isUp = part == SC_SpinBoxUp;
        const QRect button = subControlRect(CC_SpinBox, option, part, widget);
        const bool isDown = (option->activeSubControls & part) && (option->state & State_Sunken);
        if (isDown)
            paintBox(*painter, button.adjusted(1, 1, -2, -1), 5, colors.controlPressed);
        const bool steps =
            box->stepEnabled & (isUp ? QAbstractSpinBox::StepUpEnabled : QAbstractSpinBox::StepDownEnabled);
        painter->save();
        painter->translate(QRectF(button).center());
        if (isUp)
            painter->rotate(180);
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(
            QPen(steps ? colors.text : colors.tertiary, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->drawPolyline(QPolygonF{{-3.5, -1.5}, {0, 2}, {3.5, -1.5}});
        painter->restore();
    }
    painter->restore();
    if (option->state & State_HasFocus)
        paintFocusRing(*painter, option->rect, 7, colors);
}

void NightjarStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                       QPainter* painter, const QWidget* widget) const {
    const auto& colors = Colors::of(option->palette);
    switch (control) {
    case CC_ComboBox: {
        const bool isHovered = (option->state & State_MouseOver) && (option->state & State_Enabled);
        painter->save();
        if (!(option->state & State_Enabled))
            painter->setOpacity(0.55);
        paintBox(*painter, option->rect, 7, isHovered ? colors.controlHover : colors.control,
                 colors.controlBorder);
        paintSymbol(*painter, QPointF(option->rect.right() - 13.5, option->rect.center().y() + 0.5), 15,
                    QStringLiteral("chevron.up.chevron.down"), colors.secondary);
        painter->restore();
        if ((option->state & State_HasFocus) && (option->state & State_KeyboardFocusChange))
            paintFocusRing(*painter, option->rect, 7, colors);
        return;
    }
    case CC_ScrollBar:
        drawScrollBar(option, painter, widget);
        return;
    case CC_Slider:
        drawSlider(option, painter, widget);
        return;
    case CC_SpinBox:
        drawSpinBox(option, painter, widget);
        return;
    case CC_ToolButton: {
        const auto* button = qstyleoption_cast<const QStyleOptionToolButton*>(option);
        drawPrimitive(PE_PanelButtonTool, option, painter, widget);
        const QSize size = button->iconSize;
        const QRect icon(option->rect.center() - QPoint(size.width() / 2 - 1, size.height() / 2 - 1), size);
        button->icon.paint(painter, icon, Qt::AlignCenter,
                           option->state & State_Enabled ? QIcon::Normal : QIcon::Disabled);
        return;
    }
    default:
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
}

} // namespace nightjar
