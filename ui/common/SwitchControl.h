// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCheckBox>
#include <QVariantAnimation>

namespace nightjar {

/// A check box that looks like a switch; its label stands elsewhere.
class SwitchControl final : public QCheckBox {
    Q_OBJECT
public:
    explicit SwitchControl(const QString& accessibleName, QWidget* parent = nullptr);
    /// Tells nobody.
    void show(bool isOn);
    using QCheckBox::show;
    [[nodiscard]] QSize sizeHint() const override { return {36, 21}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& at) const override { return rect().contains(at); }

private:
    void slideTo(bool isOn);
    QVariantAnimation m_slide;
    qreal m_position = 0; ///< of the knob, from 0 to 1
};

} // namespace nightjar
