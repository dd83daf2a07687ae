// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Date.h"
#include "core/base/Uuid.h"

#include <cstdint>
#include <optional>
#include <string>

namespace nightjar {

/// A Bluetooth device that the user chose to track. `latitude` and `longitude` are both there or both absent.
struct TrackedBluetoothDevice {
    Uuid id;                    ///< of the peripheral, stable on this computer
    std::string name;           ///< as the user sees it
    std::string discoveredName; ///< as heard when tracking began
    Date addedAt{};
    Date lastSeen{};
    std::int32_t lastRSSI = 0;         ///< dBm
    std::optional<double> latitude{};  ///< degrees, of the computer when it last heard the device
    std::optional<double> longitude{}; ///< degrees
    bool lossAlertEnabled = false;
    double lossAlertDelay = 30; ///< seconds without a signal before the alert

    /// The device was heard. A missing coordinate leaves the pair that is known.
    void observe(Date at, std::int32_t rssi, std::optional<double> latitudeThen,
                 std::optional<double> longitudeThen);

    bool operator==(const TrackedBluetoothDevice&) const = default;
};

} // namespace nightjar
