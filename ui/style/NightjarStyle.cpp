// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/style/NightjarStyle.h"

#include "ui/common/Buttons.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QPainter>
#include <QScrollBar>
#include <QSlider>
#include <QStyleOption>
#include <QTabBar>

namespace nightjar {

namespace {

bool isFocusedByKey(const QStyleOption* option) {
    return (option->state & QStyle::State_HasFocus) && (option->state & QStyle::State_KeyboardFocusChange);
}

bool isPartOf(const QWidget* widget, const char* parentClass) {
    return widget && widget->parentWidget() && widget->parentWidget()->inherits(parentClass);
}

void drawPushButton(const QStyleOption* option, QPainter& painter, const QWidget* widget) {
    const auto& colors = Colors::of(option->palette);
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    const bool isEnabled = option->state & QStyle::State_Enabled;
    const bool isDown = option->state & (QStyle::State_Sunken | QStyle::State_On);
    const bool isHovered = isEnabled && (option->state & QStyle::State_MouseOver);
    const auto look = lookOf(widget);
    painter.save();
    if (!isEnabled)
        painter.setOpacity(0.55);
    if (button && button->features & QStyleOptionButton::Flat) {
        if (isDown || isHovered)
            paintBox(painter, option->rect, 7, isDown ? colors.controlPressed : colors.hover);
    } else if (look == ButtonLook::prominent || look == ButtonLook::large) {
        paintBox(painter, option->rect, 7,
                 isDown      ? colors.accent.darker(115)
                 : isHovered ? colors.accentHover
                             : colors.accent);
    } else {
        paintBox(painter, option->rect, 7,
                 isDown      ? colors.controlPressed
                 : isHovered ? colors.controlHover
                             : colors.control,
                 colors.controlBorder);
    }
    painter.restore();
    if (isFocusedByKey(option))
        paintFocusRing(painter, option->rect, 7, colors);
}

void drawPushButtonLabel(const QStyleOption* option, QPainter& painter, const QWidget* widget) {
    const auto& colors = Colors::of(option->palette);
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    const bool isEnabled = option->state & QStyle::State_Enabled;
    const auto look = lookOf(widget);
    const bool isProminent = look == ButtonLook::prominent || look == ButtonLook::large;
    QFont font = painter.font();
    font.setWeight(QFont::Medium);
    painter.setFont(font);
    painter.setPen(isProminent                       ? colors.onAccent
                   : !isEnabled                      ? colors.tertiary
                   : look == ButtonLook::destructive ? colors.red
                                                     : colors.text);
    painter.drawText(button->rect, Qt::AlignCenter | Qt::TextHideMnemonic, button->text);
}

} // namespace

bool showsKeyboardFocus(const QWidget* widget) {
    return widget->hasFocus() && widget->window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void paintFocusRing(QPainter& painter, const QRectF& around, qreal radius, const Colors& colors) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(withAlpha(colors.accent, 150), 3));
    painter.drawRoundedRect(around.adjusted(1.5, 1.5, -1.5, -1.5), radius, radius);
    painter.restore();
}

void paintBox(QPainter& painter, const QRectF& box, qreal radius, const QColor& fill, const QColor& line) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(fill);
    painter.setPen(line.isValid() ? QPen(line, 1) : QPen(Qt::NoPen));
    painter.drawRoundedRect(line.isValid() ? box.adjusted(0.5, 0.5, -0.5, -0.5) : box, radius, radius);
}

NightjarStyle::NightjarStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

void NightjarStyle::polish(QWidget* widget) {
    if (qobject_cast<QAbstractButton*>(widget) || qobject_cast<QComboBox*>(widget) ||
        qobject_cast<QScrollBar*>(widget) || qobject_cast<QSlider*>(widget) || qobject_cast<QTabBar*>(widget))
        widget->setAttribute(Qt::WA_Hover);
    QProxyStyle::polish(widget);
}

QRect NightjarStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                    SubControl part, const QWidget* widget) const {
    if (control == CC_ScrollBar)
        return scrollBarPart(option, part);
    const QRect& all = option->rect;
    if (control == CC_ComboBox && part == SC_ComboBoxEditField)
        return all.adjusted(10, 1, -28, -1);
    if (control == CC_ComboBox && part == SC_ComboBoxArrow)
        return {all.right() - 26, all.top(), 26, all.height()};
    if (control == CC_SpinBox) {
        switch (part) {
        case SC_SpinBoxEditField:
            return all.adjusted(6, 1, -28, -1);
        case SC_SpinBoxUp:
            return {all.right() - 25, all.top() + 1, 25, all.height() / 2};
        case SC_SpinBoxDown:
            return {all.right() - 25, all.center().y(), 25, all.height() / 2};
        default:
            break;
        }
    }
    return QProxyStyle::subControlRect(control, option, part, widget);
}

void NightjarStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                  const QWidget* widget) const {
    const auto& colors = Colors::of(option->palette);
    switch (element) {
    case PE_FrameFocusRect: // each control paints its own ring
    case PE_FrameTabBarBase:
    case PE_FrameTabWidget:
        return;
    case PE_PanelLineEdit:
    case PE_FrameLineEdit:
        if (isPartOf(widget, "QComboBox") || isPartOf(widget, "QAbstractSpinBox"))
            return;
        painter->save();
        if (!(option->state & State_Enabled))
            painter->setOpacity(0.55);
        paintBox(*painter, option->rect, 7, colors.control, colors.controlBorder);
        painter->restore();
        if (option->state & State_HasFocus)
            paintFocusRing(*painter, option->rect, 7, colors);
        return;
    case PE_PanelMenu:
    case PE_FrameMenu:
        paintBox(*painter, option->rect, 9, colors.panel, colors.controlBorder);
        return;
    case PE_PanelTipLabel:
        painter->fillRect(option->rect, colors.panel);
        painter->setPen(colors.controlBorder);
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
        return;
    case PE_PanelButtonCommand:
        drawPushButton(option, *painter, widget);
        return;
    case PE_PanelButtonTool: {
        const bool isDown = option->state & (State_Sunken | State_On);
        if (isDown || ((option->state & State_Enabled) && (option->state & State_MouseOver)))
            paintBox(*painter, option->rect, 7, isDown ? colors.selected : colors.hover);
        if (isFocusedByKey(option))
            paintFocusRing(*painter, option->rect, 7, colors);
        return;
    }
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void NightjarStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
    const auto& colors = Colors::of(option->palette);
    switch (element) {
    case CE_PushButtonLabel:
        drawPushButtonLabel(option, *painter, widget);
        return;
    case CE_Splitter:
        painter->fillRect(option->rect, colors.separator);
        return;
    case CE_ComboBoxLabel: {
        const auto* box = qstyleoption_cast<const QStyleOptionComboBox*>(option);
        painter->setPen(option->state & State_Enabled ? colors.text : colors.tertiary);
        const QRect field = subControlRect(CC_ComboBox, box, SC_ComboBoxEditField, widget);
        painter->drawText(field, Qt::AlignVCenter | Qt::AlignLeft,
                          painter->fontMetrics().elidedText(box->currentText, Qt::ElideRight, field.width()));
        return;
    }
    case CE_MenuEmptyArea:
        return;
    case CE_TabBarTabShape:
        drawTabShape(option, painter);
        return;
    case CE_TabBarTabLabel:
        drawTabLabel(option, painter);
        return;
    case CE_MenuItem:
        drawMenuItem(option, painter, widget);
        return;
    default:
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

} // namespace nightjar
