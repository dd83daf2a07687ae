// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/style/Colors.h"

#include <QScrollArea>

#include <string>

class QVBoxLayout;

namespace nightjar {

class Card;
class ElidedLabel;
class SymbolView;

/// What an inspector is about: a large symbol, the name and one line on it.
class InspectorHeader final : public QWidget {
    Q_OBJECT
public:
    explicit InspectorHeader(QWidget* parent = nullptr);
    void show(const QString& symbol, Tint tint, const QString& name, const QString& caption);
    using QWidget::show;

private:
    SymbolView* m_symbol;
    ElidedLabel* m_name;
    ElidedLabel* m_caption;
};

/// A column of cards that scrolls where the window is low.
class InspectorPage final : public QScrollArea {
    Q_OBJECT
public:
    explicit InspectorPage(QWidget* parent = nullptr);
    ~InspectorPage() override;
    [[nodiscard]] InspectorHeader& header() const { return *m_header; }
    Card* addCard(const QString& title);
    void addWidget(QWidget* widget);
    /// Side by side, equally wide.
    QWidget* addButtons(const QList<QWidget*>& buttons);
    /// Of whom the page tells. When that changes under the keyboard, it goes to the name: a button such as
    /// "Forget Device" was meant for the former.
    void follow(const std::string& id);

private:
    void showFocus(const QWidget* former, QWidget* now);

    std::string m_id;
    QVBoxLayout* m_column;
    InspectorHeader* m_header;
};

} // namespace nightjar
