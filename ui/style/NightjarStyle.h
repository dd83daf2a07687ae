// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/style/Colors.h"

#include <QProxyStyle>

namespace nightjar {

/// Qt's Fusion with our own shapes for the controls in use. Colours come from the palette; there are no style
/// sheets. Focus rings are for those who use the keyboard: they show once a key has moved the focus.
class NightjarStyle final : public QProxyStyle {
    Q_OBJECT
public:
    NightjarStyle();

    void polish(QWidget* widget) override;
    using QProxyStyle::polish;
    [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option,
                                  const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override;
    [[nodiscard]] QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                         const QWidget* widget) const override;
    [[nodiscard]] QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                       SubControl part, const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;

private:
    void drawMenuItem(const QStyleOption* option, QPainter* painter, const QWidget* widget) const;
    void drawScrollBar(const QStyleOptionComplex* option, QPainter* painter, const QWidget* widget) const;
    void drawSlider(const QStyleOptionComplex* option, QPainter* painter, const QWidget* widget) const;
    void drawSpinBox(const QStyleOptionComplex* option, QPainter* painter, const QWidget* widget) const;
    void drawTabShape(const QStyleOption* option, QPainter* painter) const;
    void drawTabLabel(const QStyleOption* option, QPainter* painter) const;
    [[nodiscard]] QSize tabSize(const QSize& title) const;
    [[nodiscard]] QRect scrollBarPart(const QStyleOptionComplex* option, SubControl part) const;
};

/// Whether a widget has the focus and a key brought it.
[[nodiscard]] bool showsKeyboardFocus(const QWidget* widget);
void paintFocusRing(QPainter& painter, const QRectF& around, qreal radius, const Colors& colors);
/// A filled rounded box, with an outline unless `line` is invalid.
void paintBox(QPainter& painter, const QRectF& box, qreal radius, const QColor& fill,
              const QColor& line = {});

} // namespace nightjar
