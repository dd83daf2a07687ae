// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/style/Colors.h"

#include <QWidget>

namespace nightjar {

namespace {

Colors makeLight() {
    Colors colors;
    colors.window = QColor::fromRgb(0xf3f3f6);
    colors.sidebar = QColor::fromRgb(0xecedf1);
    colors.content = QColor::fromRgb(0xffffff);
    colors.card = QColor::fromRgb(0xffffff);
    colors.cardBorder = QColor::fromRgb(0xe2e3e9);
    colors.text = QColor::fromRgb(0x1b1c21);
    colors.secondary = QColor::fromRgb(0x63666f);
    colors.tertiary = QColor::fromRgb(0x9699a6);
    colors.separator = QColor::fromRgb(0xdcdde4);
    colors.hairline = QColor::fromRgb(0xebecf0);
    colors.accent = QColor::fromRgb(0x2f6beb);
    colors.accentHover = QColor::fromRgb(0x2760da);
    colors.onAccent = QColor::fromRgb(0xffffff);
    colors.control = QColor::fromRgb(0xffffff);
    colors.controlHover = QColor::fromRgb(0xf6f6f9);
    colors.controlPressed = QColor::fromRgb(0xe9eaef);
    colors.controlBorder = QColor::fromRgb(0xcfd1da);
    colors.track = QColor::fromRgb(0xe1e2e9);
    colors.switchOff = QColor::fromRgb(0xb9bcc6);
    colors.hover = QColor::fromRgb(0xe2e3ea);
    colors.selected = QColor::fromRgb(0xd5d8e2);
    colors.bubble = QColor::fromRgb(0xecedf2);
    colors.panel = QColor::fromRgb(0xffffff);
    colors.green = QColor::fromRgb(0x1c8546);
    colors.orange = QColor::fromRgb(0xc46c04);
    colors.blue = QColor::fromRgb(0x2f6beb);
    colors.mint = QColor::fromRgb(0x0c8577);
    colors.red = QColor::fromRgb(0xcb3333);
    colors.water = QColor::fromRgb(0xcfe0ee);
    colors.land = QColor::fromRgb(0xf4f1e9);
    colors.coast = QColor::fromRgb(0xb6c8d8);
    colors.grid = QColor::fromRgb(0xdad9d4);
    colors.mapLabel = QColor::fromRgb(0x5a5d66);
    return colors;
}

Colors makeDark() {
    Colors colors;
    colors.window = QColor::fromRgb(0x1e1f24);
    colors.sidebar = QColor::fromRgb(0x24262c);
    colors.content = QColor::fromRgb(0x18191d);
    colors.card = QColor::fromRgb(0x2a2c33);
    colors.cardBorder = QColor::fromRgb(0x34363f);
    colors.text = QColor::fromRgb(0xecedf2);
    colors.secondary = QColor::fromRgb(0xa2a5b2);
    colors.tertiary = QColor::fromRgb(0x74778a);
    colors.separator = QColor::fromRgb(0x101115);
    colors.hairline = QColor::fromRgb(0x373941);
    colors.accent = QColor::fromRgb(0x3f78ea);
    colors.accentHover = QColor::fromRgb(0x4d86f7);
    colors.onAccent = QColor::fromRgb(0xffffff);
    colors.control = QColor::fromRgb(0x3a3d46);
    colors.controlHover = QColor::fromRgb(0x434650);
    colors.controlPressed = QColor::fromRgb(0x33363e);
    colors.controlBorder = QColor::fromRgb(0x4a4d58);
    colors.track = QColor::fromRgb(0x15161a);
    colors.switchOff = QColor::fromRgb(0x565965);
    colors.hover = QColor::fromRgb(0x2e3038);
    colors.selected = QColor::fromRgb(0x3a3d47);
    colors.bubble = QColor::fromRgb(0x2f323a);
    colors.panel = QColor::fromRgb(0x26282f);
    colors.green = QColor::fromRgb(0x45c576);
    colors.orange = QColor::fromRgb(0xf2a03d);
    colors.blue = QColor::fromRgb(0x6b9dfc);
    colors.mint = QColor::fromRgb(0x40cdb9);
    colors.red = QColor::fromRgb(0xf26d6d);
    colors.water = QColor::fromRgb(0x16202b);
    colors.land = QColor::fromRgb(0x2a2e33);
    colors.coast = QColor::fromRgb(0x3c4650);
    colors.grid = QColor::fromRgb(0x363b42);
    colors.mapLabel = QColor::fromRgb(0xa9adb8);
    colors.isDark = true;
    return colors;
}

} // namespace

const Colors& Colors::light() {
    static const Colors colors = makeLight();
    return colors;
}

const Colors& Colors::dark() {
    static const Colors colors = makeDark();
    return colors;
}

const Colors& Colors::of(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < 128 ? dark() : light();
}

const Colors& Colors::of(const QWidget* widget) {
    return widget ? of(widget->palette()) : light();
}

QColor Colors::tint(Tint tint) const {
    switch (tint) {
    case Tint::text:
        return text;
    case Tint::secondary:
        return secondary;
    case Tint::tertiary:
        return tertiary;
    case Tint::blue:
        return blue;
    case Tint::green:
        return green;
    case Tint::orange:
        return orange;
    case Tint::mint:
        return mint;
    case Tint::red:
        return red;
    case Tint::onAccent:
        return onAccent;
    }
    return text;
}

QPalette Colors::palette() const {
    QPalette palette;
    const auto set = [&palette](QPalette::ColorRole role, const QColor& color) {
        palette.setColor(QPalette::All, role, color);
    };
    set(QPalette::Window, window);
    set(QPalette::Base, content);
    set(QPalette::AlternateBase, sidebar);
    set(QPalette::WindowText, text);
    set(QPalette::Text, text);
    set(QPalette::Button, control);
    set(QPalette::ButtonText, text);
    set(QPalette::PlaceholderText, secondary);
    set(QPalette::Highlight, accent);
    set(QPalette::HighlightedText, onAccent);
    set(QPalette::ToolTipBase, panel);
    set(QPalette::ToolTipText, text);
    set(QPalette::Link, accent);
    set(QPalette::LinkVisited, accent);
    set(QPalette::BrightText, red);
    set(QPalette::Light, card);
    set(QPalette::Midlight, hairline);
    set(QPalette::Mid, separator);
    set(QPalette::Dark, controlBorder);
    set(QPalette::Shadow, withAlpha(Qt::black, 60));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, tertiary);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, selected);
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, text);
    return palette;
}

QColor withAlpha(QColor color, int alpha) {
    color.setAlpha(alpha);
    return color;
}

} // namespace nightjar
