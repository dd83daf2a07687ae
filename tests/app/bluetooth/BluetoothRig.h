// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/bluetooth/BluetoothTrackerManager.h"
#include "platform/simulated/SimulatedComputer.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace nightjar::testing {

/// The identifier of the `number`th device.
[[nodiscard]] inline Uuid deviceID(std::uint32_t number) {
    Uuid id = *Uuid::fromText("AB120000-0000-4000-8000-000000000000");
    for (std::size_t i = 0; i < sizeof number; ++i)
        id.bytes[15 - i] = static_cast<std::uint8_t>(number >> (8 * i));
    return id;
}

[[nodiscard]] inline BluetoothAdvertisement advertisement(const Uuid& id, int rssi = -60,
                                                          std::optional<std::string> name = "Keys") {
    return {.peripheral = id, .peripheralName = std::move(name), .rssi = rssi};
}

/// The Bluetooth manager on a simulated computer, whose radio is on.
class BluetoothRig : public SimulatedComputer {
public:
    BluetoothRig() { bluetooth.setState(BluetoothRadioState::poweredOn); }

    BluetoothTrackerManager& create() {
        manager.reset();
        manager = std::make_unique<BluetoothTrackerManager>(services());
        return *manager;
    }
    /// Creates the manager and starts a scan.
    BluetoothTrackerManager& scan() {
        create().startScanning();
        return *manager;
    }
    /// Hears a device and tracks it.
    void trackHeard(const Uuid& id, const std::string& name = "Keys") {
        hear(id, -60, name);
        manager->track(*manager->deviceWith(id));
    }
    /// The same, with its alert on.
    void trackWithAlert(const Uuid& id, double delay = 30, const std::string& name = "Keys") {
        trackHeard(id, name);
        manager->setLossAlert(true, id);
        manager->setLossAlertDelay(delay, id);
    }

    bool hear(const Uuid& id, int rssi = -60, std::optional<std::string> name = "Keys") {
        return bluetooth.hear(advertisement(id, rssi, std::move(name)));
    }
    void pass(std::chrono::milliseconds time) { scheduler.advance(time); }

    std::unique_ptr<BluetoothTrackerManager> manager;
};

} // namespace nightjar::testing
