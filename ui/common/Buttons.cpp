// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/Buttons.h"

#include "ui/style/Symbols.h"
#include "ui/text/ShownText.h"

#include <QEvent>

namespace nightjar {

namespace {

constexpr char lookProperty[] = "buttonLook";

} // namespace

QPushButton* makeButton(const QString& text, ButtonLook look) {
    auto* button = new QPushButton(QString(text).replace(u'&', QStringLiteral("&&")));
    button->setAccessibleName(text);
    button->setAutoDefault(false);
    button->setFlat(look == ButtonLook::flat);
    button->setProperty(lookProperty, static_cast<int>(look));
    return button;
}

ButtonLook lookOf(const QWidget* button) {
    return button ? static_cast<ButtonLook>(button->property(lookProperty).toInt()) : ButtonLook::plain;
}

IconButton::IconButton(const QString& symbol, const QString& accessibleName, const QString& help, Tint tint,
                       QWidget* parent)
    : QToolButton(parent), m_symbol(symbol), m_tint(tint) {
    setAccessibleName(accessibleName);
    setToolTip(plainToolTip(help));
    setAccessibleDescription(help); // else the tool tip is read out with its marks
    setIconSize({18, 18});
    setFixedSize(34, 30);
    setFocusPolicy(Qt::TabFocus);
    applySymbol();
}

void IconButton::applySymbol() {
    setIcon(Symbols::icon(m_symbol, Colors::of(this).tint(m_tint)));
}

void IconButton::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange)
        applySymbol();
    QToolButton::changeEvent(event);
}

} // namespace nightjar
