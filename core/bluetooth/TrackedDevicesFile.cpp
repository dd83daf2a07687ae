// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/bluetooth/TrackedDevicesFile.h"

#include <algorithm>

namespace nightjar {

namespace {

/// Half a place is none.
void dropHalfPlace(TrackedBluetoothDevice& device) {
    if (device.latitude.has_value() == device.longitude.has_value())
        return;
    device.latitude.reset();
    device.longitude.reset();
}

} // namespace

std::vector<TrackedBluetoothDevice> TrackedDevicesFile::load() {
    auto devices = m_file.load();
    std::ranges::for_each(devices, dropHalfPlace);
    return devices;
}

} // namespace nightjar
