// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QColor>
#include <QPalette>

class QWidget;

namespace nightjar {

/// What a symbol or a text says by its colour.
enum class Tint { text, secondary, tertiary, blue, green, orange, mint, red, onAccent };

/// The colours of the interface. There are two sets of them; a widget's palette tells which one it wears, so
/// that a change of the desktop's colour scheme is one new palette for the application.
struct Colors {
    QColor window, sidebar, content, card, cardBorder;
    QColor text, secondary, tertiary, separator, hairline;
    QColor accent, accentHover, onAccent;
    QColor control, controlHover, controlPressed, controlBorder, track, switchOff;
    QColor hover, selected, bubble, panel;
    QColor green, orange, blue, mint, red;
    QColor water, land, coast, grid, mapLabel;
    bool isDark = false;

    [[nodiscard]] static const Colors& light();
    [[nodiscard]] static const Colors& dark();
    [[nodiscard]] static const Colors& of(const QPalette& palette);
    [[nodiscard]] static const Colors& of(const QWidget* widget);

    [[nodiscard]] QColor tint(Tint tint) const;
    /// The palette by which `of` finds these colours again.
    [[nodiscard]] QPalette palette() const;
};

/// The same colour, more or less transparent; `alpha` from 0 to 255.
[[nodiscard]] QColor withAlpha(QColor color, int alpha);

} // namespace nightjar
