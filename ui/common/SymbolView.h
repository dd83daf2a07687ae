// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/style/Colors.h"

#include <QString>
#include <QWidget>

namespace nightjar {

/// A symbol in a square of the given size. Decoration: what it means is told by the text beside it.
class SymbolView final : public QWidget {
    Q_OBJECT
public:
    SymbolView(const QString& symbol, int size, Tint tint, QWidget* parent = nullptr);
    void show(const QString& symbol, Tint tint);
    using QWidget::show;
    [[nodiscard]] const QString& symbol() const { return m_symbol; }
    [[nodiscard]] Tint tint() const { return m_tint; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_symbol;
    Tint m_tint;
};

} // namespace nightjar
