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
                           {"DBUS_SESSION_BUS_ADDRESS", bus.address().toStdString()},
                           {"DBUS_SYSTEM_BUS_ADDRESS", bus.address().toStdString()},
                           {"PULSE_SERVER", "unix:/nonexistent"},
                           {"ALSA_CONFIG_PATH", "/nonexistent"}});
    bus.freeze();
    const auto start = std::chrono::steady_clock::now();
    LinuxPlatform platform;
    const auto services = platform.services();
    services.notifications.requestPermission();
    services.notifications.post({.identifier = "n", .title = "Title", .body = "Body"});
    services.bluetooth.setListener({});
    services.bluetooth.scan();
    services.location.requestWhenInUseAuthorization();
    services.location.requestLocation();
    services.wake.setListener([] {});
    services.wake.check();
    services.sound.play("Tink");
    const auto took = std::chrono::steady_clock::now() - start;
    bus.thaw();

    EXPECT_LT(took, 2s) << "a bus that hangs is waited for 25 seconds by careless calls";
    EXPECT_TRUE(runEventsUntil([&] { return daemon.calls.size() == 1; }));
}

TEST(LinuxPlatform, aTextMessageWaitsForAFrozenBusUpToALimit) {
    PrivateBus bus;
    const Environment set({{"DBUS_SESSION_BUS_ADDRESS", bus.address().toStdString()},
                           {"DBUS_SYSTEM_BUS_ADDRESS", bus.address().toStdString()}});
    LinuxPlatform platform;
    bus.freeze();
    const auto start = std::chrono::steady_clock::now();
    const auto sent =
        platform.services().messages.send({.recipient = "+31612345678", .text = "Hello", .script = ""});
    const auto took = std::chrono::steady_clock::now() - start;
    bus.thaw();

    EXPECT_FALSE(sent.has_value());
    EXPECT_LT(took, 20s);
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
