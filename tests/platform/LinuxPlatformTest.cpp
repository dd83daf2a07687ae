// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/LinuxPlatform.h"

#include "tests/platform/FakeNotificationDaemon.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/Environment.h"
#include "tests/support/EventLoop.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace nightjar {
namespace {

using namespace std::chrono_literals;

TEST(LinuxPlatform, startsAndPostsWithoutWaitingForAFrozenBus) {
    PrivateBus bus;
    FakeNotificationDaemon daemon(bus.connect(), {QStringLiteral("body")});
    QTemporaryDir folder;
    const Environment set({{"XDG_CONFIG_HOME", folder.path().toStdString()},
                           {"DBUS_SESSION_BUS_ADDRESS", bus.address().toStdString()}});
    bus.freeze();
    const auto start = std::chrono::steady_clock::now();
    LinuxPlatform platform;
    platform.services().notifications.requestPermission();
    platform.services().notifications.post({.identifier = "n", .title = "Title", .body = "Body"});
    const auto took = std::chrono::steady_clock::now() - start;
    bus.thaw();

    EXPECT_LT(took, 2s) << "a bus that hangs is waited for 25 seconds by careless calls";
    EXPECT_TRUE(runEventsUntil([&] { return daemon.calls.size() == 1; }));
}

TEST(LinuxPlatform, keepsTheSettingsInTheConfigurationFolder) {
    QTemporaryDir folder;
    const Environment set({{"XDG_CONFIG_HOME", folder.path().toStdString()}});
    {
        LinuxPlatform platform;
        platform.services().preferences.setInteger("guardedNodeID", 42);
    }
    EXPECT_TRUE(QFile::exists(folder.filePath(QStringLiteral("Nightjar/preferences.json"))));

    LinuxPlatform platform;
    EXPECT_EQ(platform.services().preferences.integer("guardedNodeID"), 42);
    EXPECT_EQ(platform.problem(), std::nullopt);
}

} // namespace
} // namespace nightjar
