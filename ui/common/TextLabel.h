// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/style/Colors.h"
#include "ui/style/Fonts.h"

#include <QHash>
#include <QLabel>

namespace nightjar {

/// Plain text in one of the sizes and tints of the interface.
class TextLabel final : public QLabel {
    Q_OBJECT
public:
    explicit TextLabel(const QString& text, TextSize size = TextSize::body, Tint tint = Tint::text,
                       QWidget* parent = nullptr);
    void setTint(Tint tint);
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void changeEvent(QEvent* event) override;

private:
    /// What has been measured, and of what.
    struct Heights {
        QString text;
        QFont font;
        QMargins margins;
        QHash<int, int> byWidth;
    };

    void applyTint();
    Tint m_tint;
    mutable Heights m_heights;
};

/// One line of plain text that is cut short where it does not fit; the tool tip has the whole.
class ElidedLabel final : public QLabel {
    Q_OBJECT
public:
    explicit ElidedLabel(TextSize size = TextSize::body, Tint tint = Tint::text, QWidget* parent = nullptr);
    void setFullText(const QString& text);
    [[nodiscard]] const QString& fullText() const { return m_text; }
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void updateToolTip();
    QString m_text;
    Tint m_tint;
};

} // namespace nightjar
