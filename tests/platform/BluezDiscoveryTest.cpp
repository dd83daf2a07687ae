// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/BluezWorld.h"

#include <gmock/gmock.h>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using enum BluetoothRadioState;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class BluezDiscoveryTest : public BluezWorld {
protected:
    [[nodiscard]] bool callsReach(const std::string& method, int count) {
        return runEventsUntil([&] { return calls(method) >= count; });
    }
};

TEST_F(BluezDiscoveryTest, aScanWhileScanningChangesTheFilterAndKeepsTheSession) {
    scanOnOneAdapter();
    EXPECT_EQ(tell("sessions hci0"), "1 DuplicateData=false RSSI=-127 Transport=le");

    central->scan();

    EXPECT_TRUE(runEventsUntil(
        [&] { return tell("sessions hci0") == "1 DuplicateData=false RSSI=-126 Transport=le"; }));
    EXPECT_EQ(calls("StartDiscovery"), 1);
}

TEST_F(BluezDiscoveryTest, stoppingAndStartingInOneGoEndsInAScan) {
    scanOnOneAdapter();

    central->stopScan();
    central->scan();
    central->stopScan();
    central->scan();

    EXPECT_TRUE(callsReach("StartDiscovery", 2));
    EXPECT_TRUE(hears(-60));
}

TEST_F(BluezDiscoveryTest, aSessionEndedBehindOurBackIsBegunAnew) {
    scanOnOneAdapter();

    tell("endDiscovery hci0");

    EXPECT_TRUE(hears(-60));
    EXPECT_THAT(states, IsEmpty());
}

TEST_F(BluezDiscoveryTest, anotherProgramsDiscoveryChangesNothing) {
    scanOnOneAdapter();
    auto other = bus->connect();

    ASSERT_TRUE(callAdapter(other, "StartDiscovery"));
    EXPECT_TRUE(hears(-60));
    ASSERT_TRUE(callAdapter(other, "StopDiscovery"));
    EXPECT_TRUE(hears(-61));

    EXPECT_EQ(calls("StartDiscovery"), 2) << "one of each";
    EXPECT_THAT(states, IsEmpty());
}

TEST_F(BluezDiscoveryTest, aFilterThatIsRefusedInMidScanBeginsTheSessionAnew) {
    scanOnOneAdapter();
    tell("fail SetDiscoveryFilter org.bluez.Error.Failed 1");

    central->scan();

    EXPECT_TRUE(callsReach("StartDiscovery", 2));
    EXPECT_TRUE(hears(-60));
    EXPECT_THAT(states, IsEmpty());
}

TEST_F(BluezDiscoveryTest, aRadioThatCannotBeSetGoingIsBlindUntilItCan) {
    scanOnOneAdapter();
    tell("fail StartDiscovery org.bluez.Error.Failed");

    tell("endDiscovery hci0");
    ASSERT_TRUE(comesTo(resetting));
    EXPECT_GE(calls("StartDiscovery"), 4) << "one that worked and three that did not";
    ASSERT_TRUE(callsReach("StartDiscovery", 6)) << "it tries on";
    EXPECT_THAT(states, ElementsAre(resetting));
    tell("heal");

    EXPECT_TRUE(hears(-60));
    EXPECT_THAT(states, ElementsAre(resetting, poweredOn));
}

TEST_F(BluezDiscoveryTest, twoFailuresAreNotToldOf) {
    scanOnOneAdapter();
    tell("fail StartDiscovery org.bluez.Error.InProgress 2");

    tell("endDiscovery hci0");

    EXPECT_TRUE(hears(-60));
    EXPECT_EQ(calls("StopDiscovery"), 2);
    EXPECT_THAT(states, IsEmpty());
}

TEST_F(BluezDiscoveryTest, aRadioThatTakesTooLongToBeginIsBlind) {
    settings.blindAfter = 100ms;
    scanOnOneAdapter();
    tell("ignore StartDiscovery 1");

    tell("endDiscovery hci0");

    EXPECT_TRUE(comesTo(resetting)) << "though no attempt has failed yet";
}

TEST_F(BluezDiscoveryTest, troubleThatNobodyWaitsForAnyLongerIsOver) {
    settings.blindAfter = 100ms;
    settings.answerTimeout = 1s;
    settings.stateDebounce = 2s;
    scanOnOneAdapter();
    tell("ignore StartDiscovery 1");
    tell("endDiscovery hci0");
    ASSERT_TRUE(runEventsUntil([&] { return calls("StartDiscovery") >= 2; }));
    EXPECT_FALSE(runEventsUntil([&] { return central->state() != poweredOn; }, 300ms));

    central->stopScan();

    EXPECT_FALSE(runEventsUntil([&] { return central->state() != poweredOn; }, 3s));
}

TEST_F(BluezDiscoveryTest, anAnswerThatNeverComesIsAFailure) {
    settings.answerTimeout = 200ms;
    scanOnOneAdapter();
    tell("ignore SetDiscoveryFilter 1");

    tell("endDiscovery hci0");

    EXPECT_TRUE(hears(-60));
}

TEST_F(BluezDiscoveryTest, afterTroubleTheRadioRestsUnlessSomebodyScans) {
    scanOnOneAdapter();
    scansWhenPowered = false;
    tell("fail StartDiscovery org.bluez.Error.Failed");
    tell("endDiscovery hci0");
    ASSERT_TRUE(comesTo(resetting));

    tell("heal");

    ASSERT_TRUE(comesTo(poweredOn));
    EXPECT_TRUE(runEventsUntil([&] { return sessions() == 0; }));
}

TEST_F(BluezDiscoveryTest, aScanThatIsStoppedBeforeItsTroubleIsToldIsTriedNoMore) {
    settings.stateDebounce = 400ms;
    scanOnOneAdapter();
    tell("fail StartDiscovery org.bluez.Error.Failed");
    tell("endDiscovery hci0");
    ASSERT_TRUE(callsReach("StartDiscovery", 4));

    central->stopScan();
    const int starts = calls("StartDiscovery");
    bool later = false;
    const auto timer = scheduler.after(settings.stateDebounce * 2, [&] { later = true; });
    ASSERT_TRUE(runEventsUntil([&] { return later; }));

    EXPECT_EQ(central->state(), poweredOn);
    EXPECT_LE(calls("StartDiscovery"), starts + 1) << "one may have been under way";
}

TEST_F(BluezDiscoveryTest, aRefusalIsToldAndAskedAboutAgain) {
    settings.deniedPause = 100ms;
    scanOnOneAdapter();
    for (const auto* refusal : {"org.freedesktop.DBus.Error.AccessDenied", "org.bluez.Error.NotAuthorized",
                                "org.bluez.Error.NotPermitted"}) {
        SCOPED_TRACE(refusal);
        tell(std::string("fail StartDiscovery ") + refusal);
        tell("endDiscovery hci0");
        ASSERT_TRUE(comesTo(unauthorised));
        tell("heal");
        ASSERT_TRUE(comesTo(poweredOn));
        ASSERT_TRUE(hears(-60));
        heard.clear();
    }
}

TEST_F(BluezDiscoveryTest, aRefusalEndsWithTheDaemonThatGaveIt) {
    scanOnOneAdapter();
    tell("fail StartDiscovery org.bluez.Error.NotAuthorized");
    tell("endDiscovery hci0");
    ASSERT_TRUE(comesTo(unauthorised));

    tell("down");
    tell("heal");
    tell("up");
    tell("adapter hci0");

    EXPECT_TRUE(hears(-60));
}

TEST_F(BluezDiscoveryTest, aRadioThatHearsNobodyIsSetGoingAgainFirstSoftly) {
    settings.stallLimit = 100ms;
    scanOnOneAdapter();
    ASSERT_TRUE(callsReach("SetDiscoveryFilter", calls("SetDiscoveryFilter") + 1));
    EXPECT_EQ(calls("StartDiscovery"), 1);

    EXPECT_TRUE(callsReach("StartDiscovery", 2));

    EXPECT_TRUE(hears(-60));
    EXPECT_THAT(states, IsEmpty());
}

TEST_F(BluezDiscoveryTest, theSessionEndsWithTheCentral) {
    scanOnOneAdapter();

    central.reset();

    EXPECT_TRUE(runEventsUntil([&] { return sessions() == 0; }));
    EXPECT_EQ(calls("StopDiscovery"), 1);
}

TEST_F(BluezDiscoveryTest, theCentralMayGoWhileCallsAreUnderWay) {
    settings.answerTimeout = 200ms;
    scanOnOneAdapter();
    tell("ignore StopDiscovery");
    tell("ignore StartDiscovery");
    central->stopScan();
    ASSERT_TRUE(callsReach("StopDiscovery", 1));
    central.reset();
    makeCentral();
    ASSERT_TRUE(callsReach("StartDiscovery", 2));
    central.reset();

    bool later = false;
    const auto timer = scheduler.after(settings.answerTimeout * 2, [&] { later = true; });
    EXPECT_TRUE(runEventsUntil([&] { return later; }));
}

} // namespace
} // namespace nightjar
