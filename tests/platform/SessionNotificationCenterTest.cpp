// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/SessionNotificationCenter.h"

#include "platform/linux/QtMainThread.h"
#include "platform/linux/QtScheduler.h"
#include "tests/platform/FakeNotificationDaemon.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/EventLoop.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>

namespace nightjar {
namespace {

Notification named(std::string identifier) {
    return {.identifier = std::move(identifier), .title = "Title", .body = "Body"};
}

class SessionNotificationCenterTest : public ::testing::Test {
protected:
    std::unique_ptr<FakeNotificationDaemon> daemonOn(const PrivateBus& bus) {
        return std::make_unique<FakeNotificationDaemon>(bus.connect(), QStringList{QStringLiteral("body")});
    }

    QtMainThread mainThread;
    QtScheduler scheduler;
};

TEST_F(SessionNotificationCenterTest, postsGoOutInOrderOnceTheBusIsOpen) {
    PrivateBus bus;
    const auto daemon = daemonOn(bus);
    std::promise<void> release;
    std::atomic<int> opened = 0;
    BusConnector connector(mainThread, scheduler, [&, released = release.get_future().share()] {
        ++opened;
        released.wait();
        return bus.connect();
    });
    SessionNotificationCenter center(connector, NotificationSettings());

    center.requestPermission();
    for (const char* name : {"a", "b", "c"}) {
        auto notification = named(name);
        notification.title = name;
        center.post(notification);
    }
    release.set_value();

    ASSERT_TRUE(runEventsUntil([&] { return daemon->calls.size() == 3; }));
    EXPECT_EQ(daemon->calls[0].title.toStdString(), "a");
    EXPECT_EQ(daemon->calls[2].title.toStdString(), "c");
    EXPECT_EQ(opened, 1);
}

TEST_F(SessionNotificationCenterTest, aNewBusIsUsedAfterTheOldOneWasLost) {
    auto bus = std::make_unique<PrivateBus>();
    auto daemon = daemonOn(*bus);
    BusConnector connector(mainThread, scheduler, [&] { return bus->connect(); });
    SessionNotificationCenter center(connector, NotificationSettings());
    center.post(named("first"));
    ASSERT_TRUE(runEventsUntil([&] { return daemon->calls.size() == 1; }));

    daemon.reset();
    bus = std::make_unique<PrivateBus>();
    daemon = daemonOn(*bus);

    // Until the loss has been noticed, a post goes nowhere.
    EXPECT_TRUE(runEventsUntil([&] {
        if (daemon->calls.empty())
            center.post(named("second"));
        return !daemon->calls.empty();
    }));
}

TEST_F(SessionNotificationCenterTest, withoutBusPostsAreDroppedAndEachUseTriesAgain) {
    std::atomic<int> tries = 0;
    BusConnector connector(mainThread, scheduler, [&] {
        ++tries;
        return QDBusConnection(QStringLiteral("no such bus"));
    });
    SessionNotificationCenter center(connector, NotificationSettings());

    center.post(named("first"));
    ASSERT_TRUE(runEventsUntil([&] { return tries == 1; }));

    EXPECT_TRUE(runEventsUntil([&] {
        center.post(named("second"));
        return tries >= 2;
    }));
}

} // namespace
} // namespace nightjar
