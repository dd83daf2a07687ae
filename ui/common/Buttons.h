// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/style/Colors.h"

#include <QPushButton>
#include <QToolButton>

namespace nightjar {

/// How much a button asks for attention.
enum class ButtonLook { plain, prominent, large, flat, destructive };

/// A push button; a "&" of its text is shown as such.
[[nodiscard]] QPushButton* makeButton(const QString& text, ButtonLook look = ButtonLook::plain);
[[nodiscard]] ButtonLook lookOf(const QWidget* button);

/// A symbol to press.
class IconButton final : public QToolButton {
    Q_OBJECT
public:
    IconButton(const QString& symbol, const QString& accessibleName, const QString& help,
               Tint tint = Tint::text, QWidget* parent = nullptr);

protected:
    void changeEvent(QEvent* event) override;

private:
    void applySymbol();
    QString m_symbol;
    Tint m_tint;
};

} // namespace nightjar
