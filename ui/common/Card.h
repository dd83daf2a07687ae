// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QWidget>

class QPushButton;
class QVBoxLayout;

namespace nightjar {

class TextLabel;

/// A label and its value, as all inspectors show them.
class MetricRow final : public QWidget {
    Q_OBJECT
public:
    explicit MetricRow(const QString& label, const QString& value = {}, QWidget* parent = nullptr);
    void setValue(const QString& value);
    [[nodiscard]] const QString& value() const { return m_value; }
    [[nodiscard]] const QString& label() const { return m_label; }

private:
    QString m_label;
    QString m_value;
    TextLabel* m_text;
};

/// A titled group of rows on a rounded ground, with lines between them.
class Card final : public QWidget {
    Q_OBJECT
public:
    explicit Card(const QString& title, QWidget* parent = nullptr);

    /// The card owns what is added.
    void addRow(QWidget* row);
    MetricRow* addMetric(const QString& label, const QString& value = {});
    /// A label with a control at its end. Returns the row.
    QWidget* addControl(const QString& label, QWidget* control);
    /// As wide as the card.
    void addButton(QPushButton* button);
    /// Small text that belongs to the row above it.
    TextLabel* addNote(const QString& text);

private:
    QWidget* m_body;
    QVBoxLayout* m_rows;
};

} // namespace nightjar
