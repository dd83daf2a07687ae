// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/bluetooth/TrackedBluetoothDevice.h"

namespace nightjar {

void TrackedBluetoothDevice::observe(Date at, std::int32_t rssi, std::optional<double> latitudeThen,
                                     std::optional<double> longitudeThen) {
    lastSeen = at;
    lastRSSI = rssi;
    if (latitudeThen && longitudeThen) {
        latitude = latitudeThen;
        longitude = longitudeThen;
    }
}

} // namespace nightjar
