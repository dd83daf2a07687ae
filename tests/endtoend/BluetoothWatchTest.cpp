// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/bluetooth/BluetoothTrackerManager.h"
#include "platform/linux/LogindWakeMonitor.h"
#include "platform/simulated/FakeLocationSource.h"
#include "platform/simulated/FakeMessageTransport.h"
#include "platform/simulated/FakeNotificationCenter.h"
#include "platform/simulated/FakePreferences.h"
#include "platform/simulated/FakeServiceBrowser.h"
#include "platform/simulated/FakeSystemSound.h"
#include "platform/simulated/FakeTextServices.h"
#include "platform/simulated/SimulatedHostEnvironment.h"
#include "tests/desktop/ScriptedService.h"
#include "tests/platform/BluezWorld.h"
#include "tests/support/HurriedScheduler.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// The manager on the real Bluetooth and wake bindings, whose services stand on a bus of their own. For the
/// manager ten seconds pass in one.
class BluetoothWatchTest : public BluezWorld {
protected:
    static constexpr int hurry = 10;
    static constexpr const char* nameOfTag = "Name=s:Tag Alias=s:Tag";

    BluetoothWatchTest() {
        host.setApplicationSupportFolder(folder.path());
        central = std::make_unique<BluezCentral>(connector, scheduler, settings);
        manager = std::make_unique<BluetoothTrackerManager>(PlatformServices{.host = host,
                                                                             .mainThread = mainThread,
                                                                             .scheduler = hurried,
                                                                             .preferences = preferences,
                                                                             .notifications = notifications,
                                                                             .text = text,
                                                                             .bluetooth = *central,
                                                                             .location = location,
                                                                             .sound = sound,
                                                                             .wake = wake,
                                                                             .messages = messages,
                                                                             .services = network});
    }
    ~BluetoothWatchTest() override { manager.reset(); }

    [[nodiscard]] bool shows(std::string_view state) {
        return runEventsUntil([&] { return manager->state() == state; });
    }
    /// Lets time pass for the manager, hearing the tag all the while or not at all.
    void live(std::chrono::milliseconds time, std::optional<int> rssi) {
        const auto end = hurried.steadyNow() + time;
        EXPECT_TRUE(runEventsUntil([&] {
            if (rssi)
                advertise(*rssi, nameOfTag);
            return hurried.steadyNow() >= end;
        }));
    }
    [[nodiscard]] bool hearsTag() {
        return runEventsUntil([&] {
            advertise(-60, nameOfTag);
            return !manager->devices().empty();
        });
    }
    void trackWithAlert() {
        tell("up");
        tell("adapter hci0");
        manager->startScanning();
        ASSERT_TRUE(hearsTag());
        const auto device = manager->devices().front();
        EXPECT_EQ(device.name, "Tag");
        manager->track(device);
        manager->setLossAlertDelay(15, device.id);
        manager->setLossAlert(true, device.id);
    }
    [[nodiscard]] std::vector<std::string> titles() const {
        std::vector<std::string> result;
        for (const auto& notification : notifications.posted())
            result.push_back(notification.title);
        return result;
    }

    testing::TemporaryFolder folder;
    SimulatedHostEnvironment host;
    testing::HurriedScheduler hurried{scheduler, hurry};
    FakePreferences preferences;
    FakeNotificationCenter notifications;
    FakeTextServices text;
    FakeLocationSource location;
    FakeSystemSound sound;
    FakeMessageTransport messages;
    FakeServiceBrowser network;
    ScriptedService login{bus->connect(), QStringLiteral("org.freedesktop.login1"),
                          QStringLiteral("/org/freedesktop")};
    LogindWakeMonitor wake{connector};
    std::unique_ptr<BluetoothTrackerManager> manager;
};

TEST_F(BluetoothWatchTest, aTagThatLeavesAlertsOnceAndItsReturnIsToldOnce) {
    trackWithAlert();
    manager->renameTrackedDevice(manager->devices().front().id, "Bicycle bag");
    live(30s, -60);
    EXPECT_THAT(titles(), IsEmpty());

    const auto silentSince = hurried.steadyNow();
    ASSERT_TRUE(runEventsUntil([&] { return !titles().empty(); }));
    const auto waited = hurried.steadyNow() - silentSince;
    // Heard every other second, looked at every five; the rest is what a busy machine takes.
    EXPECT_GE(waited, 12s);
    EXPECT_LE(waited, 15s + 5s + 10s);
    live(60s, std::nullopt);
    EXPECT_THAT(titles(), ElementsAre("Bicycle bag is no longer nearby"));

    live(30s, -70);
    EXPECT_THAT(titles(), ElementsAre("Bicycle bag is no longer nearby", "Bicycle bag is nearby again"));
}

TEST_F(BluetoothWatchTest, theFinderFollowsTheSignalAndItsCueKeepsTime) {
    trackWithAlert();
    manager->setFinderSoundEnabled(true);
    manager->startFinding(manager->devices().front().id);
    EXPECT_EQ(manager->state(), "Finding Tag…");

    live(3s, -80);
    EXPECT_EQ(manager->state(), "Live signal · -80 dBm");
    EXPECT_THAT(sound.played(), IsEmpty()) << "a weak signal makes no sound";
    live(5s, -45);
    EXPECT_EQ(manager->trackedDevice()->band, BluetoothProximityBand::veryClose);
    const auto cues = sound.played().size();
    EXPECT_GE(cues, 4U);
    EXPECT_LE(cues, std::size_t{5s / 350ms});

    live(20s, std::nullopt);
    const auto lastCues = sound.played().size();
    EXPECT_LE(lastCues - cues, std::size_t{5s / 350ms} + 1) << "a lost signal makes none";
    live(5s, std::nullopt);
    EXPECT_EQ(sound.played().size(), lastCues);
    manager->stopFinding();
    EXPECT_EQ(manager->state(), "Choose a Bluetooth device");
    EXPECT_TRUE(runEventsUntil([&] { return sessions() == 0; }));
}

TEST_F(BluetoothWatchTest, aDaemonThatIsKilledOrARadioSwitchedOffLosesNobody) {
    trackWithAlert();
    live(10s, -60);

    daemon->kill();
    ASSERT_TRUE(shows("Bluetooth is unavailable"));
    EXPECT_FALSE(manager->isScanning());
    live(60s, std::nullopt);
    daemon = std::make_unique<RunningBluetoothd>(bus->address());
    tell("up");
    tell("adapter hci0");
    ASSERT_TRUE(shows("Looking for Bluetooth devices…")) << "the scan goes on by itself";
    live(60s, std::nullopt);
    EXPECT_THAT(titles(), IsEmpty()) << "not heard since";
    ASSERT_TRUE(hearsTag());

    tell("power hci0 off");
    ASSERT_TRUE(shows("Turn on Bluetooth to configure a tracker"));
    live(60s, std::nullopt);
    tell("power hci0 on");
    ASSERT_TRUE(shows("Looking for Bluetooth devices…"));
    live(30s, std::nullopt);
    EXPECT_THAT(titles(), IsEmpty());

    ASSERT_TRUE(hearsTag());
    live(30s, std::nullopt);
    EXPECT_THAT(titles(), ElementsAre("Tag is no longer nearby")) << "armed again";
}

TEST_F(BluetoothWatchTest, aDaemonThatHangsLosesNobody) {
    trackWithAlert();
    live(10s, -60);

    daemon->freeze();
    ASSERT_TRUE(shows("Bluetooth is unavailable"));
    live(30s, std::nullopt);
    daemon->thaw();
    ASSERT_TRUE(shows("Looking for Bluetooth devices…"));
    EXPECT_THAT(titles(), IsEmpty());
}

TEST_F(BluetoothWatchTest, sleepIsNoLoss) {
    trackWithAlert();
    live(10s, -60);

    for (const bool isGoingToSleep : {true, false}) {
        login.tell(QStringLiteral("/org/freedesktop/login1"),
                   QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("PrepareForSleep"),
                   {isGoingToSleep});
    }
    live(60s, std::nullopt);
    EXPECT_THAT(titles(), IsEmpty());
    EXPECT_TRUE(manager->isScanning());

    live(5s, -60);
    live(30s, std::nullopt);
    EXPECT_THAT(titles(), SizeIs(1)) << "heard after the wake, and lost";
}

} // namespace
} // namespace nightjar
