// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/linux/BluezCentral.h"
#include "platform/linux/BusConnector.h"
#include "platform/linux/QtMainThread.h"
#include "platform/linux/QtScheduler.h"
#include "tests/platform/PrivateBus.h"
#include "tests/platform/RunningBluetoothd.h"
#include "tests/support/EventLoop.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace nightjar {

/// A Bluetooth central on a bus of its own with a stand-in for the daemon. Waits of seconds take tenths of
/// them here; the daemon does not hang as quickly as that unless a test asks for it.
class BluezWorld : public ::testing::Test {
protected:
    static constexpr const char* tag = "C0:11:22:33:44:55";

    BluezWorld();
    ~BluezWorld() override;

    /// A central of which everything told is kept in `states` and `heard`.
    void makeCentral();
    /// The daemon with one powered adapter, and a central that is scanning.
    void scanOnOneAdapter();

    std::string tell(const std::string& command) { return daemon->tell(command); }
    /// Receives an advertisement of the tag. What the daemon made of it.
    std::string advertise(int rssi, const std::string& properties = {});
    /// How many clients of the daemon look for devices on the adapter.
    [[nodiscard]] int sessions(const std::string& adapter = "hci0");
    [[nodiscard]] int calls(const std::string& method) { return std::stoi(tell("calls " + method)); }

    [[nodiscard]] bool comesTo(BluetoothRadioState state);
    /// Another program on the same bus begins or ends to look for devices; whether it could.
    [[nodiscard]] static bool callAdapter(QDBusConnection& program, const char* method,
                                          const char* adapter = "hci0");
    /// Waits until the tag is heard with this reading, which is sent again and again.
    [[nodiscard]] bool hears(int rssi);
    /// Waits until all that the daemon has sent so far must have arrived.
    void settle(const std::string& adapter = "hci0");

    std::unique_ptr<PrivateBus> bus = std::make_unique<PrivateBus>();
    QtMainThread mainThread;
    QtScheduler scheduler;
    BluezSettings settings;
    BusConnector connector{mainThread, scheduler, [this] { return bus->connect(); }};
    std::unique_ptr<RunningBluetoothd> daemon = std::make_unique<RunningBluetoothd>(bus->address());
    std::unique_ptr<BluezCentral> central;
    std::vector<BluetoothRadioState> states;
    std::vector<BluetoothAdvertisement> heard;
    /// Asks for a scan whenever the radio is on, as the owner of a central does, and always stops when it is
    /// not.
    bool scansWhenPowered = false;
};

} // namespace nightjar
