// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/LogindWakeMonitor.h"

#include "platform/linux/QtMainThread.h"
#include "platform/simulated/FakeScheduler.h"
#include "tests/desktop/ScriptedService.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/EventLoop.h"

#include <gtest/gtest.h>

namespace nightjar {
namespace {

using namespace std::chrono_literals;

class LogindWakeMonitorTest : public ::testing::Test {
protected:
    std::unique_ptr<ScriptedService> startService(const char* name = "org.freedesktop.login1") {
        return std::make_unique<ScriptedService>(bus.connect(), QString::fromLatin1(name),
                                                 QStringLiteral("/org/freedesktop"));
    }
    static void notice(ScriptedService& sender, const QVariant& isGoingToSleep) {
        sender.tell(QStringLiteral("/org/freedesktop/login1"),
                    QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("PrepareForSleep"),
                    {isGoingToSleep});
    }

    /// Notices are heard once the monitor knows the service.
    void listen() {
        monitor.setListener([this] { ++wakes; });
        ASSERT_TRUE(runEventsUntil([this] {
            notice(*login, false);
            return wakes > 0;
        }));
        ASSERT_TRUE(isHeard(*login));
        wakes = 0;
    }
    bool isHeard(const ScriptedService& sender) { return sender.isHeardBy(connector.bus()); }
    void sleep(std::chrono::nanoseconds time) { slept += time; }
    void stayAwake(std::chrono::nanoseconds time) { awake += time; }

    PrivateBus bus;
    std::unique_ptr<ScriptedService> login = startService();
    QtMainThread mainThread;
    FakeScheduler scheduler;
    BusConnector connector{mainThread, scheduler, [this] { return bus.connect(); }};
    std::chrono::nanoseconds awake = 1h;
    std::chrono::nanoseconds slept = 5h;
    LogindWakeMonitor monitor{
        connector, {.bootTime = [this] { return awake + slept; }, .monotonic = [this] { return awake; }}};
    int wakes = 0;
};

TEST_F(LogindWakeMonitorTest, theNoticeOfTheLoginServiceCounts) {
    listen();
    notice(*login, true);
    sleep(8h);
    notice(*login, false);
    ASSERT_TRUE(isHeard(*login));
    EXPECT_EQ(wakes, 1);

    monitor.check();
    EXPECT_EQ(wakes, 1) << "the clocks show the same wake";

    notice(*login, true);
    notice(*login, false);
    ASSERT_TRUE(isHeard(*login));
    EXPECT_EQ(wakes, 2) << "also without a clock that shows it";
}

TEST_F(LogindWakeMonitorTest, theClocksTellBeforeTheNotice) {
    listen();
    sleep(2s);
    monitor.check();
    EXPECT_EQ(wakes, 1);
    monitor.check();
    stayAwake(59s);
    notice(*login, true); // was still on its way
    notice(*login, false);
    ASSERT_TRUE(isHeard(*login));
    EXPECT_EQ(wakes, 1) << "it is the same wake";

    notice(*login, false);
    ASSERT_TRUE(isHeard(*login));
    EXPECT_EQ(wakes, 2) << "one notice for one wake";
}

TEST_F(LogindWakeMonitorTest, aNoticeLongAfterOrAfterAnotherSleepIsOfAnotherWake) {
    listen();
    sleep(2s);
    monitor.check();
    stayAwake(60s);
    notice(*login, false);
    ASSERT_TRUE(isHeard(*login));
    EXPECT_EQ(wakes, 2);

    sleep(2s);
    monitor.check();
    stayAwake(5s);
    sleep(2s);
    notice(*login, false);
    ASSERT_TRUE(isHeard(*login));
    EXPECT_EQ(wakes, 4);
}

TEST_F(LogindWakeMonitorTest, aSecondOfSleepIsNone) {
    monitor.setListener([this] { ++wakes; });
    monitor.check();
    for (int i = 0; i < 5; ++i) {
        stayAwake(24h);
        sleep(1s);
        monitor.check();
    }
    EXPECT_EQ(wakes, 0);
    sleep(1'001ms);
    monitor.check();
    EXPECT_EQ(wakes, 1);
}

TEST_F(LogindWakeMonitorTest, onlyTheLoginServiceIsBelieved) {
    listen();
    const auto stranger = startService("org.example.Stranger");
    notice(*stranger, false);
    notice(*login, QStringLiteral("false"));
    notice(*login, 0);
    ASSERT_TRUE(isHeard(*stranger));
    ASSERT_TRUE(isHeard(*login));
    EXPECT_EQ(wakes, 0);
}

TEST_F(LogindWakeMonitorTest, aLoginServiceThatStartsLaterIsHeard) {
    listen();
    login.reset();
    login = startService();
    sleep(1h);
    notice(*login, false);
    ASSERT_TRUE(isHeard(*login));
    EXPECT_EQ(wakes, 1);
}

TEST_F(LogindWakeMonitorTest, theClocksOfTheComputerAgreeWhileItIsAwake) {
    LogindWakeMonitor real(connector);
    int told = 0;
    real.setListener([&] { ++told; });
    real.check();
    EXPECT_EQ(told, 0);
}

} // namespace
} // namespace nightjar
