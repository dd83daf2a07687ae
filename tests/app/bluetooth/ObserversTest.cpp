// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/app/bluetooth/BluetoothRig.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

// Who watches the manager, and for how long.

namespace nightjar {
namespace {

using namespace nightjar::testing;
using namespace std::chrono_literals;

const Uuid keys = deviceID(1);
const Uuid bicycle = deviceID(2);

class BluetoothObserversTest : public ::testing::Test, protected BluetoothRig {
protected:
    [[nodiscard]] const DiscoveredTracker& device(const Uuid& id) const { return *manager->deviceWith(id); }
};

TEST_F(BluetoothObserversTest, viewsHearOfEachDeviceAndOfTime) {
    std::vector<std::string> told;
    scan();
    QObject::connect(manager.get(), &BluetoothTrackerManager::deviceChanged,
                     [&](std::size_t place) { told.push_back("device " + std::to_string(place)); });
    QObject::connect(manager.get(), &BluetoothTrackerManager::devicesCleared,
                     [&] { told.emplace_back("cleared"); });
    QObject::connect(manager.get(), &BluetoothTrackerManager::timePassed, [&] { told.emplace_back("time"); });

    hear(keys);
    hear(bicycle);
    pass(5s);
    hear(keys);
    manager->startFinding(bicycle);
    pass(250ms);
    manager->stopFinding();
    manager->startScanning();
    const std::vector<std::string> expected{"device 0", "device 1", "time",   "device 0",
                                            "device 1", "time",     "cleared"};
    EXPECT_EQ(told, expected);
}

TEST_F(BluetoothObserversTest, whoIsToldMayStartAndStopAtOnce) {
    using Signal = void (BluetoothTrackerManager::*)();
    using Manager = BluetoothTrackerManager;
    const std::vector<Signal> signals{
        &Manager::aboutToChange,     &Manager::devicesChanged,        &Manager::stateChanged,
        &Manager::isScanningChanged, &Manager::trackedIDChanged,      &Manager::isFindingChanged,
        &Manager::devicesCleared,    &Manager::trackedDevicesChanged, &Manager::timePassed};
    const std::vector<std::function<void(Manager&)>> answers{
        [](Manager& m) { m.startScanning(); },
        [](Manager& m) { m.stopScanning(); },
        [](Manager& m) { m.startFinding(keys); },
        [](Manager& m) { m.stopFinding(); },
        [](Manager& m) { m.stopTracking(keys); },
        [](Manager& m) { m.setLossAlert(true, keys); },
        [this](Manager&) { wake.wake(); },
        [this](Manager&) { bluetooth.setState(BluetoothRadioState::poweredOff); }};
    for (const auto signal : signals) {
        for (const auto& answer : answers) {
            manager.reset();
            bluetooth.setState(BluetoothRadioState::poweredOn);
            scan();
            trackWithAlert(keys);
            int told = 0;
            bool isAnswering = false;
            QObject::connect(manager.get(), signal, [&] {
                if (isAnswering || ++told % 3 != 1)
                    return;
                isAnswering = true;
                answer(*manager);
                isAnswering = false;
            });
            const auto* seen = manager->deviceWith(keys);
            const auto copy = seen ? *seen : DiscoveredTracker{.id = keys};
            for (int i = 0; i < 3; ++i) {
                hear(keys);
                pass(40s);
                hear(keys);
                manager->startFinding(keys);
                hear(keys);
                pass(3s);
                manager->stopFinding();
                manager->startScanning();
                manager->track(copy);
                manager->stopTracking(keys);
            }
            // What is shown is what is.
            EXPECT_EQ(manager->isScanning(), bluetooth.isScanning());
            const bool saysStopped = manager->state() == "Choose a Bluetooth device" ||
                                     manager->state() == "No Bluetooth devices found";
            EXPECT_FALSE(manager->isScanning() && saysStopped);
        }
    }
}

TEST_F(BluetoothObserversTest, nothingIsLeftBehindByAManagerThatIsGone) {
    scan();
    hear(keys);
    manager->startScanning();
    manager->startFinding(keys);
    manager.reset();
    EXPECT_EQ(scheduler.armedTimers(), 0U);
    EXPECT_FALSE(bluetooth.isScanning());
    bluetooth.setState(BluetoothRadioState::poweredOff);
    wake.wake();
    location.setAuthorization(LocationAuthorization::authorizedAlways);
    location.fail({});
    EXPECT_EQ(location.locationRequests(), 0);
}

TEST_F(BluetoothObserversTest, aCrowdIsKeptApartAndLetGoOf) {
    constexpr std::uint32_t crowd = 60'000;
    scan();
    for (std::uint32_t i = 0; i < crowd; ++i)
        hear(deviceID(i), -40 - static_cast<int>(i % 50));
    ASSERT_EQ(manager->devices().size(), crowd);
    for (std::uint32_t i = 0; i < crowd; ++i) {
        ASSERT_EQ(device(deviceID(i)).rssi, -40 - static_cast<int>(i % 50));
        ASSERT_EQ(&device(deviceID(i)), &manager->devices()[i]);
    }
    EXPECT_EQ(manager->deviceWith(deviceID(crowd)), nullptr);

    manager->startScanning();
    EXPECT_TRUE(manager->devices().empty());
    hear(deviceID(crowd));
    EXPECT_GT(scheduler.armedTimers(), 1U);
    pass(10s);
    EXPECT_EQ(scheduler.armedTimers(), 1U) << "only the tick remains";
    EXPECT_EQ(manager->devices().size(), 1U);
}

} // namespace
} // namespace nightjar
