// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/simulated/FakeBluetoothCentral.h"

namespace nightjar {

void FakeBluetoothCentral::scan() {
    if (m_state != BluetoothRadioState::poweredOn)
        return;
    m_isScanning = true;
    ++m_scansBegun;
}

void FakeBluetoothCentral::stopScan() {
    m_isScanning = false;
}

void FakeBluetoothCentral::setState(BluetoothRadioState state) {
    if (m_state == state)
        return;
    m_state = state;
    if (state != BluetoothRadioState::poweredOn)
        m_isScanning = false;
    if (m_listener.onStateChanged)
        m_listener.onStateChanged();
}

bool FakeBluetoothCentral::hear(const BluetoothAdvertisement& advertisement) {
    if (!m_isScanning)
        return false;
    if (m_listener.onAdvertisement)
        m_listener.onAdvertisement(advertisement);
    return true;
}

} // namespace nightjar
