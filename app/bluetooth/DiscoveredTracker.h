// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Date.h"
#include "core/base/Uuid.h"
#include "core/bluetooth/BluetoothProximity.h"

#include <cstdint>
#include <deque>
#include <string>

namespace nightjar {

/// A Bluetooth device heard in the current scan.
struct DiscoveredTracker {
    Uuid id;                 ///< of the peripheral
    std::string name{};      ///< advertised, or made up for a device without a name
    Date lastSeen{};         ///< of its latest processed advertisement
    double smoothedRSSI = 0; ///< dBm
    std::int32_t rssi = 0;   ///< dBm, of the latest processed advertisement
    std::int32_t sampleCount = 0;
    bool isMeshtastic = false;
    BluetoothProximityTrend trend = BluetoothProximityTrend::acquiring;
    BluetoothProximityBand band = BluetoothProximityBand::weak;

    bool operator==(const DiscoveredTracker&) const = default;
};

/// In the order in which the devices were first heard. A crowded place brings millions in a day: adding one
/// moves no other.
using DiscoveredTrackers = std::deque<DiscoveredTracker>;

} // namespace nightjar
