// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/Coalesced.h"

#include <QWidget>

class QLineEdit;
class QPushButton;

namespace nightjar {

class BluetoothTrackerManager;
class MetricRow;
class SwitchControl;

/// Where the alerts of lost devices go besides the desktop.
class AlertDeliverySettingsView final : public QWidget {
    Q_OBJECT
public:
    explicit AlertDeliverySettingsView(BluetoothTrackerManager& manager, QWidget* parent = nullptr);

private:
    void build();
    void refresh();
    BluetoothTrackerManager& m_manager;
    Coalesced m_refresh;
    QLineEdit* m_recipient;
    SwitchControl* m_enabled;
    MetricRow* m_status;
    QPushButton* m_test;
};

} // namespace nightjar
