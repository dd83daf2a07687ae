// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/app/bluetooth/BluetoothRig.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace nightjar {
namespace {

using namespace nightjar::testing;
using namespace std::chrono_literals;

const Uuid keys = deviceID(1);
const Uuid bicycle = deviceID(2);

class BluetoothScanTest : public ::testing::Test, protected BluetoothRig {
protected:
    [[nodiscard]] const std::string& state() const { return manager->state(); }
    [[nodiscard]] const DiscoveredTracker& device(const Uuid& id) const { return *manager->deviceWith(id); }
};

TEST_F(BluetoothScanTest, theStateOfTheRadioIsNamed) {
    bluetooth.setState(BluetoothRadioState::unknown);
    create();
    pass(4999ms);
    EXPECT_EQ(state(), "Bluetooth is starting…");
    pass(1ms);
    EXPECT_EQ(state(), "Bluetooth is unavailable") << "where there is none, nobody tells of it";

    using enum BluetoothRadioState;
    const std::vector<std::pair<BluetoothRadioState, std::string>> rows{
        {poweredOn, "Bluetooth is ready"},
        {poweredOff, "Turn on Bluetooth to configure a tracker"},
        {unauthorised, "Allow Bluetooth access in System Settings"},
        {unsupported, "Bluetooth Low Energy is not supported on this Mac"},
        {resetting, "Bluetooth is unavailable"},
        {unknown, "Bluetooth is unavailable"}};
    for (const auto& [radio, sentence] : rows) {
        bluetooth.setState(radio);
        EXPECT_EQ(state(), sentence);
        if (radio == poweredOn)
            continue;
        manager->setErrorMessage({});
        manager->startFinding(keys);
        EXPECT_EQ(state(), sentence);
        EXPECT_FALSE(manager->isFinding());
        EXPECT_FALSE(bluetooth.isScanning());
    }
}

TEST_F(BluetoothScanTest, aRadioThatIsReadyAtTheStartIsShownAsReady) {
    create();
    EXPECT_EQ(state(), "Bluetooth is starting…");
    pass(0ms);
    EXPECT_EQ(state(), "Bluetooth is ready");

    scan();
    pass(0ms);
    EXPECT_EQ(state(), "Looking for Bluetooth devices…");
}

TEST_F(BluetoothScanTest, aWishedScanFollowsThePowerOfTheRadio) {
    bluetooth.setState(BluetoothRadioState::poweredOff);
    scan();
    EXPECT_EQ(state(), "Turn on Bluetooth to configure a tracker");
    EXPECT_FALSE(manager->isScanning());

    bluetooth.setState(BluetoothRadioState::poweredOn);
    EXPECT_EQ(state(), "Looking for Bluetooth devices…");
    EXPECT_TRUE(manager->isScanning() && bluetooth.isScanning());
    hear(keys);

    bluetooth.setState(BluetoothRadioState::resetting);
    EXPECT_EQ(state(), "Bluetooth is unavailable");
    EXPECT_FALSE(manager->isScanning());
    EXPECT_EQ(scheduler.armedTimers(), 0U);
    EXPECT_EQ(manager->devices().size(), 1U);

    bluetooth.setState(BluetoothRadioState::poweredOn);
    EXPECT_TRUE(manager->isScanning() && bluetooth.isScanning());
    EXPECT_TRUE(manager->devices().empty());

    manager->stopScanning();
    bluetooth.setState(BluetoothRadioState::poweredOff);
    bluetooth.setState(BluetoothRadioState::poweredOn);
    EXPECT_FALSE(manager->isScanning() || bluetooth.isScanning());
    EXPECT_EQ(state(), "Bluetooth is ready");
}

TEST_F(BluetoothScanTest, aDeviceIsProcessedEveryTwoSeconds) {
    scan();
    hear(keys, -50);
    pass(1900ms);
    hear(keys, -60);
    hear(bicycle, -70);
    EXPECT_EQ(device(keys).rssi, -50);
    EXPECT_EQ(device(bicycle).rssi, -70);
    pass(100ms);
    hear(keys, -60);
    EXPECT_EQ(device(keys).rssi, -60);
    EXPECT_EQ(device(keys).lastSeen, scheduler.now());
    EXPECT_EQ(device(keys).sampleCount, 2);

    // Not even an advertisement without a reading, or a new scan, lets another one through before.
    pass(2s);
    hear(keys, BluetoothAdvertisement::noRssi);
    pass(1999ms);
    hear(keys, -70);
    EXPECT_EQ(device(keys).rssi, -60);
    pass(1ms);
    hear(keys, -71);
    manager->startScanning();
    manager->startScanning();
    pass(1999ms);
    hear(keys, -72);
    EXPECT_EQ(manager->deviceWith(keys), nullptr);
    pass(1ms);
    hear(keys, -73);
    EXPECT_EQ(device(keys).rssi, -73);
    EXPECT_EQ(device(keys).sampleCount, 1);
}

TEST_F(BluetoothScanTest, theClockMaySayWhatItLikes) {
    scan();
    hear(keys, -50);
    scheduler.setDate(scheduler.now() - 24h);
    pass(2s);
    hear(keys, -60);
    EXPECT_EQ(device(keys).rssi, -60);
    scheduler.setDate(scheduler.now() + 48h);
    hear(keys, -70);
    EXPECT_EQ(device(keys).rssi, -60);
}

TEST_F(BluetoothScanTest, anAdvertisementWithoutAReadingIsNoDevice) {
    scan();
    for (const int rssi : {127, 0, 20, -128}) {
        hear(keys, rssi);
        pass(2s);
    }
    EXPECT_TRUE(manager->devices().empty());
    EXPECT_EQ(state(), "Looking for Bluetooth devices…");
    hear(keys, -127);
    hear(bicycle, -1);
    EXPECT_EQ(manager->devices().size(), 2U);
}

TEST_F(BluetoothScanTest, aNameIsTheDevicesOwnOrAdvertisedOrMadeUp) {
    scan();
    const auto nameAfter = [this](std::optional<std::string> own, std::optional<std::string> local) {
        pass(2s);
        bluetooth.hear({.peripheral = keys,
                        .peripheralName = std::move(own),
                        .localName = std::move(local),
                        .rssi = -60});
        return device(keys).name;
    };
    EXPECT_EQ(nameAfter({}, {}), "Bluetooth device AB12");
    EXPECT_EQ(nameAfter({}, "Tag"), "Tag");
    EXPECT_EQ(nameAfter("Keys of the bicycle in the shed", "Tag"), "Keys of the bicycle in the shed");
    EXPECT_EQ(nameAfter({}, {}), "Bluetooth device AB12");
}

TEST_F(BluetoothScanTest, theMeshtasticMarkStaysForTheScan) {
    scan();
    const auto isMarkedAfter = [this](std::vector<Uuid> services) {
        pass(2s);
        bluetooth.hear({.peripheral = keys, .serviceUUIDs = std::move(services), .rssi = -60});
        return device(keys).isMeshtastic;
    };
    const Uuid meshtastic = *Uuid::fromText("6ba1b218-15a8-461f-9fa8-5dcae273eafd");
    EXPECT_FALSE(isMarkedAfter({}));
    EXPECT_FALSE(isMarkedAfter({bicycle}));
    EXPECT_TRUE(isMarkedAfter({bicycle, meshtastic}));
    EXPECT_TRUE(isMarkedAfter({}));
    manager->startScanning();
    EXPECT_FALSE(isMarkedAfter({}));
}

TEST_F(BluetoothScanTest, theStatusCountsTheDevices) {
    scan();
    hear(keys);
    EXPECT_EQ(state(), "Found 1 Bluetooth device");
    hear(bicycle);
    EXPECT_EQ(state(), "Found 2 Bluetooth devices");
    manager->track(device(keys));
    EXPECT_EQ(state(), "Tracking Keys");
    pass(2s);
    hear(keys);
    EXPECT_EQ(state(), "Found 2 Bluetooth devices");
    manager->stopScanning();
    EXPECT_EQ(state(), "Choose a Bluetooth device");
    EXPECT_EQ(manager->devices().size(), 2U);
    EXPECT_FALSE(bluetooth.isScanning());

    manager->startScanning();
    manager->stopScanning();
    EXPECT_EQ(state(), "No Bluetooth devices found");
}

TEST_F(BluetoothScanTest, theRadioScansAgainAfterAWake) {
    create();
    wake.wake();
    EXPECT_FALSE(bluetooth.isScanning());
    manager->startScanning();
    const int before = bluetooth.scansBegun();
    wake.wake();
    EXPECT_EQ(bluetooth.scansBegun(), before + 1);
    wake.wakeUnnoticed();
    pass(5s);
    EXPECT_EQ(bluetooth.scansBegun(), before + 2);
}

} // namespace
} // namespace nightjar
