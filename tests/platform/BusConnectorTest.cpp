// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/BusConnector.h"

#include "platform/linux/QtMainThread.h"
#include "platform/simulated/FakeScheduler.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/Environment.h"
#include "tests/support/EventLoop.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>

namespace nightjar {
namespace {

using namespace std::chrono_literals;

class BusConnectorTest : public ::testing::Test {
protected:
    /// What the signals of a connector told, as one letter each: opened, lost, failed.
    std::shared_ptr<std::string> record(const BusConnector& connector) {
        auto told = std::make_shared<std::string>();
        QObject::connect(&connector, &BusConnector::opened, [told] { *told += 'o'; });
        QObject::connect(&connector, &BusConnector::lost, [told] { *told += 'l'; });
        QObject::connect(&connector, &BusConnector::failed, [told] { *told += 'f'; });
        return told;
    }

    static QDBusConnection noBus() { return QDBusConnection(QStringLiteral("no such bus")); }

    /// Opens no bus, and that only once it is released.
    BusConnector::OpenBus busThatWaitsFor(std::promise<void>& release) {
        return [released = release.get_future().share()] {
            released.wait();
            return noBus();
        };
    }

    QtMainThread mainThread;
    FakeScheduler scheduler;
};

TEST_F(BusConnectorTest, opensOnceHoweverOftenItIsAsked) {
    PrivateBus bus;
    std::atomic<int> tries = 0;
    BusConnector connector(mainThread, scheduler, [&] {
        ++tries;
        return bus.connect();
    });
    const auto told = record(connector);

    EXPECT_FALSE(connector.isConnected());
    connector.open();
    connector.open();
    connector.openNow();
    EXPECT_EQ(*told, "");
    ASSERT_TRUE(runEventsUntil([&] { return !told->empty(); }));
    connector.openNow();

    EXPECT_EQ(*told, "o");
    EXPECT_TRUE(connector.bus().isConnected());
    EXPECT_EQ(tries, 1);
    EXPECT_EQ(scheduler.armedTimers(), 0u);
}

TEST_F(BusConnectorTest, opensALostBusAgain) {
    auto bus = std::make_unique<PrivateBus>();
    BusConnector connector(mainThread, scheduler, [&] { return bus->connect(); });
    const auto told = record(connector);
    connector.open();
    ASSERT_TRUE(runEventsUntil([&] { return *told == "o"; }));

    bus = std::make_unique<PrivateBus>();
    ASSERT_TRUE(runEventsUntil([&] { return *told == "ol"; }));
    EXPECT_FALSE(connector.isConnected());
    scheduler.advance(BusConnector::firstRetry);

    EXPECT_TRUE(runEventsUntil([&] { return *told == "olo"; }));
    EXPECT_TRUE(connector.isConnected());
}

TEST_F(BusConnectorTest, waitsTwiceAsLongAfterEachFailureUpToALimit) {
    std::unique_ptr<PrivateBus> bus;
    BusConnector connector(mainThread, scheduler, [&] { return bus ? bus->connect() : noBus(); });
    const auto told = record(connector);
    connector.open();
    std::string expected = "f";
    for (const auto wait : {5s, 10s, 20s, 40s, 80s, 160s, 300s, 300s}) {
        ASSERT_TRUE(runEventsUntil([&] { return *told == expected; }));
        scheduler.advance(wait - 1ms);
        EXPECT_EQ(scheduler.armedTimers(), 1u) << "no try before its time";
        connector.open();
        EXPECT_EQ(scheduler.armedTimers(), 1u) << "and asking once more does not hurry it";
        scheduler.advance(1ms);
        EXPECT_EQ(scheduler.armedTimers(), 0u);
        expected += 'f';
    }
    ASSERT_TRUE(runEventsUntil([&] { return *told == expected; }));

    bus = std::make_unique<PrivateBus>();
    connector.openNow();
    ASSERT_TRUE(runEventsUntil([&] { return told->ends_with('o'); })) << "without waiting";
    bus.reset();
    ASSERT_TRUE(runEventsUntil([&] { return told->ends_with('l'); }));
    scheduler.advance(5s);
    EXPECT_TRUE(runEventsUntil([&] { return told->ends_with("lf"); })) << "the wait began anew";
}

TEST_F(BusConnectorTest, isNotWaitedForLongerThanWanted) {
    std::promise<void> release;
    BusConnector hanging(mainThread, scheduler, busThatWaitsFor(release));
    EXPECT_FALSE(hanging.busWithin(1ms).isConnected());
    release.set_value();

    BusConnector failing(mainThread, scheduler, noBus);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(failing.busWithin(10min).isConnected());
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s) << "a failure is known at once";
}

TEST_F(BusConnectorTest, findsTheBusesWhereTheEnvironmentSays) {
    PrivateBus bus;
    const Environment set({{"DBUS_SESSION_BUS_ADDRESS", bus.address().toStdString()},
                           {"DBUS_SYSTEM_BUS_ADDRESS", bus.address().toStdString()}});
    const auto session = BusConnector::openSessionBus();
    const auto system = BusConnector::openSystemBus();

    EXPECT_TRUE(session.isConnected());
    EXPECT_TRUE(system.isConnected());
    EXPECT_NE(session.name(), system.name());
    for (const auto& opened : {session, system})
        QDBusConnection::disconnectFromBus(opened.name());
}

TEST_F(BusConnectorTest, mayGoWhileTheBusIsBeingOpened) {
    std::promise<void> release;
    {
        BusConnector connector(mainThread, scheduler, busThatWaitsFor(release));
        connector.open();
        release.set_value();
    }
    bool later = false;
    mainThread.post([&] { later = true; });

    EXPECT_TRUE(runEventsUntil([&] { return later; })) << "what was posted to the dead object did nothing";
}

TEST_F(BusConnectorTest, aBusThatNeverAnswersDoesNotHoldUpTheEnd) {
    std::promise<void> release;
    const auto start = std::chrono::steady_clock::now();
    {
        BusConnector connector(mainThread, scheduler, busThatWaitsFor(release));
        connector.open();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);
    EXPECT_TRUE(BackgroundThread::wasOneLeftBehind());
    release.set_value();
}

} // namespace
} // namespace nightjar
