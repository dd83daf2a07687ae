// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/bluetooth/LossAlertMonitor.h"

#include <algorithm>

namespace nightjar {

double LossAlertMonitor::delayOf(const TrackedBluetoothDevice& device) {
    return std::max(device.lossAlertDelay, leastDelay);
}

LossAlertState LossAlertMonitor::stateOf(const TrackedBluetoothDevice& device, bool isListening) const {
    if (!device.lossAlertEnabled)
        return LossAlertState::off;
    if (m_lossAlertedIDs.contains(device.id))
        return LossAlertState::alerted;
    if (!isListening)
        return LossAlertState::blind;
    return m_heardThisScan.contains(device.id) ? LossAlertState::armed : LossAlertState::waiting;
}

bool LossAlertMonitor::isDue(const TrackedBluetoothDevice& device, SteadyTime heardAt, SteadyTime now) const {
    return device.lossAlertEnabled && m_heardThisScan.contains(device.id) &&
           !m_lossAlertedIDs.contains(device.id) && Seconds{delayOf(device)} <= Seconds{now - heardAt};
}

std::vector<Uuid> LossAlertMonitor::due(const TrackedDevices& devices, SteadyTime now) const {
    std::vector<Uuid> ids;
    for (const TrackedBluetoothDevice& device : devices.list()) {
        if (isDue(device, devices.heardAt(device.id), now))
            ids.push_back(device.id);
    }
    return ids;
}

} // namespace nightjar
