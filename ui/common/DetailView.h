// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/style/Colors.h"
#include "ui/style/Fonts.h"

#include <QWidget>

class QVBoxLayout;

namespace nightjar {

class ElidedLabel;
class SymbolView;
class TextLabel;

/// What the content column tells of one device: a large symbol, the name, and what was added below, all
/// centred.
class DetailView final : public QWidget {
    Q_OBJECT
public:
    explicit DetailView(QWidget* parent = nullptr);
    void show(const QString& symbol, Tint tint, const QString& title);
    using QWidget::show;

    /// Words that wrap. The view owns what is added.
    TextLabel* addText(TextSize size, Tint tint);
    void addSpacing(int height);
    void addWidget(QWidget* widget);
    /// Side by side.
    void addRow(const QList<QWidget*>& widgets);

    [[nodiscard]] const SymbolView& symbol() const { return *m_symbol; }
    [[nodiscard]] QString title() const;

private:
    QVBoxLayout* m_column;
    SymbolView* m_symbol;
    ElidedLabel* m_title;
};

} // namespace nightjar
