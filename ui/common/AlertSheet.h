// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>
#include <QPushButton>
#include <QStringList>

namespace nightjar {

class TextLabel;

/// A title, a text and one or two buttons over its parent's window. To be opened with `open()`: it holds
/// up nothing. Escape is the last button. It deletes itself once closed.
class AlertSheet final : public QDialog {
    Q_OBJECT
public:
    /// With one button it only dismisses; with two the first one accepts.
    AlertSheet(const QString& title, const QString& text, const QStringList& buttons, QWidget* parent);
    [[nodiscard]] QPushButton* button(int place) const { return m_buttons[place]; }
    [[nodiscard]] const QString& text() const { return m_text; }
    void setText(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void moveOverWindow();
    QString m_text;
    TextLabel* m_label;
    QList<QPushButton*> m_buttons;
};

} // namespace nightjar
