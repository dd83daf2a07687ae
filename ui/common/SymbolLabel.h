// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/style/Colors.h"
#include "ui/style/Fonts.h"

#include <QWidget>

namespace nightjar {

class SymbolView;
class TextLabel;

/// A symbol and the words that belong to it.
class SymbolLabel final : public QWidget {
    Q_OBJECT
public:
    explicit SymbolLabel(TextSize size = TextSize::body, QWidget* parent = nullptr);
    void show(const QString& symbol, Tint tint, const QString& text);
    void show(const QString& symbol, Tint symbolTint, Tint textTint, const QString& text);
    using QWidget::show;
    [[nodiscard]] QString text() const;
    [[nodiscard]] QString symbol() const;

private:
    SymbolView* m_symbol;
    TextLabel* m_text;
};

} // namespace nightjar
