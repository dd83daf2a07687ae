// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Uuid.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace nightjar {

/// What can be done with the computer's Bluetooth radio.
enum class BluetoothRadioState { unknown, resetting, unsupported, unauthorised, poweredOff, poweredOn };

/// One received advertisement. Texts are valid UTF-8 and otherwise as the sender wished.
struct BluetoothAdvertisement {
    /// The `rssi` of an advertisement without a reading.
    static constexpr int noRssi = 127;

    Uuid peripheral;                             ///< stable for a given peripheral on this computer
    std::optional<std::string> peripheralName{}; ///< the peripheral's own name, never empty
    std::optional<std::string> localName{};      ///< the name that it advertises, never empty
    std::vector<Uuid> serviceUUIDs{};            ///< those that it advertises
    int rssi = noRssi;                           ///< dBm

    bool operator==(const BluetoothAdvertisement&) const = default;
};

/// The Bluetooth LE radio in its central role. Main thread; no call waits, and none calls the listener before
/// it returns.
class BluetoothCentral {
public:
    struct Listener {
        /// After each change of `state()`. A scan has ended once the state is no longer `poweredOn`.
        std::function<void()> onStateChanged{};
        /// Every advertisement of every device, repeated ones too, from `scan` until `stopScan`.
        std::function<void(const BluetoothAdvertisement&)> onAdvertisement{};
    };

    virtual ~BluetoothCentral() = default;
    /// Replaces the listener; an empty one is told nothing.
    virtual void setListener(Listener listener) = 0;
    [[nodiscard]] virtual BluetoothRadioState state() const = 0;
    /// Scans for peripherals of any service. While it scans already, the radio begins afresh, so that it
    /// reports what it may have held back as a repetition. For use in the state `poweredOn`.
    virtual void scan() = 0;
    virtual void stopScan() = 0;
    /// Whether whoever runs the radio has given a sign of life in the last seconds; where not, one is asked
    /// for, so that the answer changes soon: to true, or the state is no longer `poweredOn`. While it is
    /// false, the silence of a device says nothing.
    [[nodiscard]] virtual bool isResponsive() = 0;
};

} // namespace nightjar
