// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Random.h"
#include "core/base/Uuid.h"
#include "platform/Scheduler.h"
#include "platform/simulated/FakeBluetoothCentral.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nightjar {

/// A device of the simulated world: what it advertises and how far from the radio it is.
struct SimulatedPeripheral {
    struct Waypoint {
        double seconds; ///< since the world began
        double metres;
    };

    std::optional<std::string> name{};
    std::vector<Uuid> serviceUUIDs{};
    double rssiAtOneMetre = -59; ///< dBm
    /// By time, a straight way from one to the next; before the first and after the last it stands still.
    std::vector<Waypoint> way{};
    /// When the way begins anew; 0 = never.
    double waySeconds = 0;
    std::chrono::milliseconds interval{1000}; ///< between two advertisements
    /// How often it takes a new random address and so looks like another device.
    std::optional<std::chrono::seconds> newAddressEvery{};
};

/// Bluetooth devices that move about and advertise to a simulated radio, with the noise that signals have
/// indoors. The same seed gives the same world. One thread.
class BluetoothWorld {
public:
    BluetoothWorld(FakeBluetoothCentral& central, Scheduler& scheduler,
                   const std::vector<SimulatedPeripheral>& peripherals, std::uint64_t seed);
    ~BluetoothWorld();
    BluetoothWorld(const BluetoothWorld&) = delete;
    BluetoothWorld& operator=(const BluetoothWorld&) = delete;

    /// Switches the radio on; from now on the devices advertise.
    void begin();

private:
    struct Sender;

    void advertise(Sender& sender);
    void scheduleNext(Sender& sender);
    [[nodiscard]] double secondsNow() const;

    FakeBluetoothCentral& m_central;
    Scheduler& m_scheduler;
    SteadyTime m_beginning;
    std::vector<std::unique_ptr<Sender>> m_senders;
};

} // namespace nightjar
