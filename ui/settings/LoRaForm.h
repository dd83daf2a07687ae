// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/bridge/MeshtasticRadioSettings.h"

#include <QWidget>

class QComboBox;
class QSpinBox;

namespace nightjar {

class SwitchControl;

/// The LoRa settings as controls. A value outside of what the controls offer is shown as it is and stays
/// until the user changes it; the fields without a control stay as they are.
class LoRaForm final : public QWidget {
    Q_OBJECT
public:
    explicit LoRaForm(QWidget* parent = nullptr);
    /// Tells nobody.
    void show(const MeshtasticRadioSettings& values);
    using QWidget::show;
    [[nodiscard]] const MeshtasticRadioSettings& values() const { return m_values; }
    /// In reading order.
    [[nodiscard]] QList<QWidget*> controls() const;

Q_SIGNALS:
    void edited();

private:
    void refresh();
    MeshtasticRadioSettings m_values;
    QComboBox* m_region;
    QComboBox* m_preset;
    QSpinBox* m_hops;
    QSpinBox* m_slot;
    SwitchControl* m_transmits;
    SwitchControl* m_boost;
    QSpinBox* m_power;
};

} // namespace nightjar
