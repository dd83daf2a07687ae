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

class BluezHangingTest : public BluezWorld {
protected:
    /// A daemon that is silent hangs after a quarter of a second.
    void noticeHangingSoon() {
        settings.silenceUntilPing = 100ms;
        settings.pingTimeout = 150ms;
        settings.pingPause = 100ms;
        settings.answerTimeout = 300ms;
    }
};

TEST_F(BluezHangingTest, aDaemonThatDoesNotTellItsObjectsIsAskedUntilItDoes) {
    noticeHangingSoon();
    tell("up");
    tell("adapter hci0");
    tell("ignore GetManagedObjects 1");
    makeCentral();

    EXPECT_TRUE(comesTo(poweredOn));
    EXPECT_THAT(states, ElementsAre(poweredOn));
    EXPECT_EQ(calls("GetManagedObjects"), 2);
}

TEST_F(BluezHangingTest, aFrozenDaemonIsNoticedAndTheScanBeginsAnewWhenItThaws) {
    noticeHangingSoon();
    scanOnOneAdapter();

    daemon->freeze();
    EXPECT_TRUE(comesTo(resetting));
    daemon->thaw();

    EXPECT_TRUE(comesTo(poweredOn));
    EXPECT_TRUE(hears(-60));
    EXPECT_EQ(sessions(), 1);
}

TEST_F(BluezHangingTest, aThawedDaemonThatSpeaksIsBelievedAtOnce) {
    noticeHangingSoon();
    settings.pingPause = 60s;
    scanOnOneAdapter();

    daemon->freeze();
    ASSERT_TRUE(comesTo(resetting));
    daemon->thaw();

    EXPECT_TRUE(hears(-60));
}

TEST_F(BluezHangingTest, aFrozenDaemonIsReplacedByTheNext) {
    noticeHangingSoon();
    scanOnOneAdapter();
    central->stopScan();
    central->scan();
    ASSERT_TRUE(hears(-50));

    daemon->freeze();
    ASSERT_TRUE(comesTo(resetting));
    daemon = std::make_unique<RunningBluetoothd>(bus->address());
    tell("up");
    tell("adapter hci0");

    EXPECT_TRUE(hears(-60));
}

TEST_F(BluezHangingTest, aQuietDaemonThatAnswersIsNoHangingOne) {
    noticeHangingSoon();
    settings.pingTimeout = 10s;
    scanOnOneAdapter();

    bool later = false;
    const auto timer = scheduler.after(settings.silenceUntilPing * 5, [&] { later = true; });
    ASSERT_TRUE(runEventsUntil([&] { return later; }));

    EXPECT_THAT(states, IsEmpty());
}

TEST_F(BluezHangingTest, aFrozenBusIsNoticedToo) {
    noticeHangingSoon();
    scanOnOneAdapter();

    bus->freeze();
    EXPECT_TRUE(comesTo(resetting));
    bus->thaw();

    EXPECT_TRUE(hears(-60));
}

} // namespace
} // namespace nightjar
