// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/app/bluetooth/BluetoothRig.h"

#include <gtest/gtest.h>

namespace nightjar {
namespace {

using namespace nightjar::testing;
using namespace std::chrono_literals;

const Uuid keys = deviceID(1);
const Uuid bicycle = deviceID(2);

class FinderTest : public ::testing::Test, protected BluetoothRig {
protected:
    [[nodiscard]] const std::string& state() const { return manager->state(); }
    /// How often the cue sounds while the device is heard with this signal each quarter of a second.
    std::size_t cuesIn(std::chrono::milliseconds time, int rssi) {
        const auto before = sound.played().size();
        for (; time > 0ms; time -= 250ms) {
            hear(keys, rssi);
            pass(250ms);
        }
        return sound.played().size() - before;
    }
};

TEST_F(FinderTest, everyAdvertisementCountsAndTheReadingsBeginAfresh) {
    scan();
    hear(keys, -90);
    hear(bicycle);
    pass(100ms);
    manager->startFinding(keys);
    EXPECT_EQ(state(), "Finding Keys…");
    EXPECT_EQ(manager->trackedDevice()->sampleCount, 0);
    EXPECT_EQ(manager->trackedDevice()->trend, BluetoothProximityTrend::acquiring);
    EXPECT_EQ(manager->trackedDevice()->rssi, -90);

    for (int i = 1; i <= 5; ++i) {
        pass(100ms);
        hear(keys, -67);
        EXPECT_EQ(manager->trackedDevice()->sampleCount, i);
    }
    EXPECT_EQ(state(), "Live signal · -67 dBm");
    EXPECT_EQ(manager->trackedDevice()->smoothedRSSI, -67.0);
    hear(bicycle, -50);
    EXPECT_EQ(manager->deviceWith(bicycle)->rssi, -50);
    EXPECT_EQ(state(), "Live signal · -67 dBm");

    manager->startFinding(bicycle);
    EXPECT_EQ(manager->trackedID(), bicycle);
    manager->stopFinding();
    EXPECT_FALSE(manager->isFinding() || manager->trackedID() || manager->isScanning());
    EXPECT_FALSE(bluetooth.isScanning());
    EXPECT_EQ(scheduler.armedTimers(), 0U);
    EXPECT_EQ(state(), "Choose a Bluetooth device");
}

TEST_F(FinderTest, aDeviceThatWasNotHeardIsFoundToo) {
    create().startFinding(keys);
    EXPECT_EQ(state(), "Finding device…");
    EXPECT_FALSE(manager->trackedDevice());
    EXPECT_TRUE(manager->isScanning() && bluetooth.isScanning());
    hear(bicycle);
    EXPECT_EQ(state(), "Finding device…");
    hear(keys, -70);
    EXPECT_EQ(state(), "Live signal · -70 dBm");
}

TEST_F(FinderTest, theCueSoundsFasterTheCloser) {
    create().startFinding(keys);
    EXPECT_EQ(cuesIn(6s, -40), 0U) << "it is off at first";
    manager->setFinderSoundEnabled(true);
    EXPECT_EQ(cuesIn(6s, -40), 12U);
    cuesIn(3s, -60);
    EXPECT_EQ(cuesIn(6s, -60), 8U);
    cuesIn(3s, -75);
    EXPECT_NEAR(static_cast<double>(cuesIn(12500ms, -75)), 10, 1);
    cuesIn(3s, -90);
    EXPECT_EQ(cuesIn(6s, -90), 0U) << "a weak signal has none";
    EXPECT_GT(cuesIn(6s, -40), 0U);
    manager->setFinderSoundEnabled(false);
    EXPECT_EQ(cuesIn(6s, -40), 0U);
    EXPECT_EQ(sound.played().front(), "Tink");
}

TEST_F(FinderTest, aLostSignalMakesNoSound) {
    const auto soundsAfter = [this](std::chrono::milliseconds silence) {
        create().startFinding(keys);
        pass(250ms - silence % 250ms); // a tick comes at the end of the silence
        hear(keys, -40);
        scheduler.setDate(scheduler.now() - 24h);
        pass(silence - 1ms);
        manager->setFinderSoundEnabled(true);
        const auto before = sound.played().size();
        pass(1ms);
        return sound.played().size() > before;
    };
    EXPECT_TRUE(soundsAfter(150ms));
    EXPECT_TRUE(soundsAfter(4900ms));
    EXPECT_TRUE(soundsAfter(5000ms));
    EXPECT_FALSE(soundsAfter(5001ms));
    EXPECT_FALSE(soundsAfter(1min));
}

TEST_F(FinderTest, aSilentDeviceMakesTheRadioBeginAfreshEveryTwoSeconds) {
    create().startFinding(keys);
    EXPECT_EQ(bluetooth.scansBegun(), 1);
    for (int i = 0; i < 20; ++i) {
        pass(1s);
        hear(keys);
    }
    EXPECT_EQ(bluetooth.scansBegun(), 1);
    pass(10s);
    EXPECT_EQ(bluetooth.scansBegun(), 6);
    bluetooth.setState(BluetoothRadioState::poweredOff);
    pass(10s);
    EXPECT_EQ(bluetooth.scansBegun(), 6);
}

TEST_F(FinderTest, theFinderGoesOnWhenTheRadioComesBack) {
    create().startFinding(keys);
    hear(keys, -50);
    bluetooth.setState(BluetoothRadioState::poweredOff);
    EXPECT_FALSE(manager->isScanning());
    bluetooth.setState(BluetoothRadioState::poweredOn);
    EXPECT_TRUE(manager->isScanning() && bluetooth.isScanning());
    EXPECT_EQ(state(), "Finding Keys…");
}

TEST_F(FinderTest, aScanBegunInTheFinderKeepsTheList) {
    create().startFinding(keys);
    hear(keys);
    manager->startScanning();
    EXPECT_EQ(manager->devices().size(), 1U);
}

} // namespace
} // namespace nightjar
