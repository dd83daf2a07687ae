// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QComboBox>
#include <QString>

#include <vector>

namespace nightjar {

struct DelayChoice {
    QString label; ///< empty: a line between the choices
    double seconds = 0;
};

/// After how long an alert is sent. A delay that is none of the choices is shown as one more, so that it is
/// never shown as another one. The wheel scrolls what the picker stands in: it never changes an alert.
class DelayPicker final : public QComboBox {
    Q_OBJECT
public:
    DelayPicker(const QString& accessibleName, const std::vector<DelayChoice>& choices,
                QWidget* parent = nullptr);
    /// Tells nobody. While the choices are open nothing changes.
    void show(double seconds);
    using QComboBox::show;

Q_SIGNALS:
    /// By the user.
    void chosen(double seconds);

protected:
    void wheelEvent(QWheelEvent* event) override;

private:
    [[nodiscard]] int placeOf(double seconds) const;
    void dropExtra();

    double m_extra = -1; ///< the delay that is none of the choices; negative: none
};

} // namespace nightjar
