// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QWidget>

namespace nightjar {

class SymbolView;
class TextLabel;

/// What a column shows while it has nothing to show: a symbol, a title and what to do about it.
class UnavailableView final : public QWidget {
    Q_OBJECT
public:
    explicit UnavailableView(QWidget* parent = nullptr);
    void show(const QString& symbol, const QString& title, const QString& description);
    using QWidget::show;
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString description() const;

private:
    SymbolView* m_symbol;
    TextLabel* m_title;
    TextLabel* m_description;
};

} // namespace nightjar
