// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/BluezWorld.h"

#include <gmock/gmock.h>

#include <future>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using enum BluetoothRadioState;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using BluezStateTest = BluezWorld;

struct Beginning {
    const char* description;
    std::vector<std::string> commands;
    BluetoothRadioState state;
};

TEST_F(BluezStateTest, theStateTellsWhatIsThere) {
    const Beginning table[] = {
        {"powered", {"adapter hci0"}, poweredOn},
        {"off", {"adapter hci0 powered=0"}, poweredOff},
        {"one of two off", {"adapter hci0 powered=0", "adapter hci1"}, poweredOn},
        {"no adapter", {}, unsupported},
        {"an adapter that cannot look for devices", {"adapter hci0 central=0"}, unsupported},
        {"refused", {"fail GetManagedObjects org.freedesktop.DBus.Error.AccessDenied"}, unauthorised},
    };
    for (const auto& [description, commands, state] : table) {
        SCOPED_TRACE(description);
        tell("up");
        for (const auto& command : commands)
            tell(command);
        states.clear();
        makeCentral();
        EXPECT_EQ(central->state(), unknown);

        EXPECT_TRUE(comesTo(state));

        EXPECT_THAT(states, ElementsAre(state)) << "nothing else was told before";
        central.reset();
        tell("down");
        tell("heal");
    }
}

TEST_F(BluezStateTest, aDaemonThatComesLaterIsFound) {
    makeCentral();
    ASSERT_TRUE(runEventsUntil([&] { return connector.isConnected(); }));
    central->scan();
    tell("up");
    tell("adapter hci0");

    EXPECT_TRUE(comesTo(poweredOn));
    EXPECT_THAT(states, ElementsAre(poweredOn));
    EXPECT_EQ(sessions(), 0) << "the scan was asked for before there was a radio";
}

TEST_F(BluezStateTest, aDaemonMayTakeItsTimeToFindTheAdapter) {
    settings.adapterGrace = 10s;
    tell("up");
    makeCentral();
    ASSERT_TRUE(runEventsUntil([&] { return calls("GetManagedObjects") == 1; }));
    bool later = false;
    const auto timer = scheduler.after(settings.stateDebounce * 4, [&] { later = true; });
    ASSERT_TRUE(runEventsUntil([&] { return later; }));
    tell("adapter hci0");

    EXPECT_TRUE(comesTo(poweredOn));
    EXPECT_THAT(states, ElementsAre(poweredOn));
}

TEST_F(BluezStateTest, whoWasRefusedAsksAgain) {
    settings.deniedPause = 100ms;
    tell("up");
    tell("adapter hci0");
    tell("fail GetManagedObjects org.freedesktop.DBus.Error.AccessDenied 2");
    makeCentral();

    EXPECT_TRUE(comesTo(unauthorised));
    EXPECT_TRUE(comesTo(poweredOn));
}

TEST_F(BluezStateTest, switchingOffEndsTheScanAndSwitchingOnAllowsAnother) {
    scanOnOneAdapter();

    tell("power hci0 off");
    ASSERT_TRUE(comesTo(poweredOff));
    tell("power hci0 on");

    EXPECT_TRUE(hears(-60));
    EXPECT_THAT(states, ElementsAre(poweredOff, poweredOn));
}

TEST_F(BluezStateTest, whenNobodyAsksAgainTheRadioStaysQuietAfterSwitchingOn) {
    scanOnOneAdapter();
    scansWhenPowered = false;

    tell("power hci0 off");
    ASSERT_TRUE(comesTo(poweredOff));
    tell("power hci0 on");
    ASSERT_TRUE(comesTo(poweredOn));

    const int starts = calls("StartDiscovery");
    central->scan();
    EXPECT_TRUE(hears(-60));
    EXPECT_EQ(calls("StartDiscovery"), starts + 1);
}

TEST_F(BluezStateTest, aMomentWithoutPowerIsNotToldAndTheScanGoesOn) {
    settings.stateDebounce = 10s;
    scanOnOneAdapter();

    tell("power hci0 off");
    tell("power hci0 on");

    EXPECT_TRUE(hears(-60));
    EXPECT_THAT(states, IsEmpty());
}

TEST_F(BluezStateTest, aDaemonThatEndsInOrderIsToldOnce) {
    scanOnOneAdapter();

    tell("down inOrder");
    ASSERT_TRUE(comesTo(resetting));
    tell("up");
    tell("adapter hci0");

    EXPECT_TRUE(hears(-60));
    EXPECT_THAT(states, ElementsAre(resetting, poweredOn));
}

TEST_F(BluezStateTest, aKilledDaemonIsFollowedByTheNext) {
    scanOnOneAdapter();

    daemon->kill();
    ASSERT_TRUE(comesTo(resetting));
    EXPECT_EQ(central->knownDevices(), 0);
    daemon = std::make_unique<RunningBluetoothd>(bus->address());
    tell("fail StartDiscovery org.bluez.Error.InProgress 2");
    tell("up");
    tell("adapter hci0");

    EXPECT_TRUE(hears(-60));
    EXPECT_GE(calls("StopDiscovery"), 2) << "a session that is still there is not ours";
}

TEST_F(BluezStateTest, aBusThatGoesIsFollowedByTheNext) {
    scanOnOneAdapter();

    bus->end();
    ASSERT_TRUE(comesTo(resetting));
    bus = std::make_unique<PrivateBus>();
    daemon = std::make_unique<RunningBluetoothd>(bus->address());
    tell("up");
    tell("adapter hci0");
    connector.openNow();

    EXPECT_TRUE(hears(-60));
    EXPECT_THAT(states, ElementsAre(resetting, poweredOn));
}

TEST_F(BluezStateTest, untilTheBusIsOpenNothingIsKnownAndNothingWaits) {
    std::promise<void> release;
    BusConnector slow(mainThread, scheduler, [this, released = release.get_future().share()] {
        released.wait();
        return bus->connect();
    });
    slow.open();
    tell("up");
    tell("adapter hci0");
    BluezCentral waiting(slow, scheduler, settings);

    waiting.scan();
    waiting.stopScan();
    EXPECT_EQ(waiting.state(), unknown);
    release.set_value();

    EXPECT_TRUE(runEventsUntil([&] { return waiting.state() == poweredOn; }));
}

TEST_F(BluezStateTest, theChosenAdapterStaysAndTheOtherOneTakesOver) {
    scanOnOneAdapter();
    tell("adapter hci1");
    settle();
    EXPECT_EQ(sessions("hci1"), 0);
    const auto hearsOn = [&](const std::string& adapter) {
        return runEventsUntil([&] {
            tell("adv " + adapter + " C0:00:00:00:00:01 -30");
            return !heard.empty();
        });
    };

    tell("power hci0 off");
    EXPECT_TRUE(hearsOn("hci1"));
    tell("power hci0 on");
    settle("hci1");
    EXPECT_EQ(sessions("hci0"), 0) << "the one in use is as good";
    heard.clear();
    tell("unplug hci1");

    EXPECT_TRUE(hearsOn("hci0"));
}

TEST_F(BluezStateTest, whatAnotherAdapterHearsForAnotherProgramIsNotHeard) {
    scanOnOneAdapter();
    tell("adapter hci1");
    auto other = bus->connect();
    ASSERT_TRUE(callAdapter(other, "StartDiscovery", "hci1"));

    EXPECT_EQ(tell("adv hci1 C0:00:00:00:00:01 -30"), "added");
    settle();

    EXPECT_TRUE(heard.empty());
}

TEST_F(BluezStateTest, anAdapterPulledOutInMidScanLeavesNothingBehind) {
    scanOnOneAdapter();

    tell("unplug hci0");
    ASSERT_TRUE(comesTo(unsupported));
    EXPECT_EQ(central->knownDevices(), 0);
    tell("adapter hci0");

    EXPECT_TRUE(hears(-60));
}

} // namespace
} // namespace nightjar
