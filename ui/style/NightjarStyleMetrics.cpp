// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/Buttons.h"
#include "ui/style/NightjarStyle.h"

#include <QAbstractScrollArea>
#include <QPainterPath>
#include <QStyleOption>

#include <algorithm>

// How large things are, and how they behave.

namespace nightjar {

int NightjarStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
    case PM_ScrollBarExtent:
        return 12;
    case PM_ScrollView_ScrollBarSpacing:
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
    case PM_TabBarTabOverlap:
    case PM_TabBarTabShiftHorizontal:
    case PM_TabBarTabShiftVertical:
    case PM_TabBarBaseHeight:
    case PM_TabBarBaseOverlap:
        return 0;
    case PM_MenuPanelWidth:
    case PM_MenuVMargin:
    case PM_MenuHMargin:
        return 5;
    case PM_SplitterWidth:
        return 1;
    case PM_SmallIconSize:
    case PM_ButtonIconSize:
        return 16;
    case PM_ToolTipLabelFrameWidth:
        return 6;
    case PM_SliderLength:
    case PM_SliderThickness:
    case PM_SliderControlThickness:
        return 20;
    case PM_DefaultFrameWidth:
        return qobject_cast<const QAbstractScrollArea*>(widget)
                   ? 0
                   : QProxyStyle::pixelMetric(metric, option, widget);
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int NightjarStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                             QStyleHintReturn* data) const {
    switch (hint) {
    case SH_ComboBox_Popup:
        return 1; // a menu with a check mark at the current entry
    case SH_ToolTip_WakeUpDelay:
        return 500;
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
        return 0;
    case SH_TabBar_Alignment:
        return Qt::AlignCenter;
    case SH_Slider_AbsoluteSetButtons:
        return Qt::LeftButton;
    case SH_Menu_Mask: // round without a compositor too
        if (auto* mask = qstyleoption_cast<QStyleHintReturnMask*>(data)) {
            QPainterPath outline;
            outline.addRoundedRect(QRectF(option->rect), 9, 9);
            mask->region = QRegion(outline.toFillPolygon().toPolygon());
            return 1;
        }
        return 0;
    default:
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
}

QSize NightjarStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                      const QWidget* widget) const {
    const QSize usual = QProxyStyle::sizeFromContents(type, option, size, widget);
    switch (type) {
    case CT_PushButton: {
        const bool isLarge = lookOf(widget) == ButtonLook::large;
        return {size.width() + (isLarge ? 44 : 26), std::max(isLarge ? 36 : 28, size.height() + 10)};
    }
    case CT_ComboBox:
        return {size.width() + 44, std::max(28, size.height() + 10)};
    case CT_LineEdit:
        return {usual.width(), std::max(30, usual.height())};
    case CT_SpinBox: // as high as the line in it
        return {size.width() + 46, std::max(30, size.height())};
    case CT_TabBarTab:
        return tabSize(option->fontMetrics.size(Qt::TextShowMnemonic,
                                                qstyleoption_cast<const QStyleOptionTab*>(option)->text));
    case CT_MenuItem: {
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (item && item->menuItemType == QStyleOptionMenuItem::Separator)
            return {usual.width(), 9};
        return {usual.width() + 16, std::max(28, usual.height())};
    }
    default:
        return usual;
    }
}

} // namespace nightjar
