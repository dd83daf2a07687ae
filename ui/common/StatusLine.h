// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QWidget>

namespace nightjar {

class ElidedLabel;

/// The line at the foot of a sidebar that tells how its watch goes.
class StatusLine final : public QWidget {
    Q_OBJECT
public:
    explicit StatusLine(const QString& symbol, QWidget* parent = nullptr);
    void setText(const QString& text);
    [[nodiscard]] QString text() const;

private:
    ElidedLabel* m_text;
};

} // namespace nightjar
