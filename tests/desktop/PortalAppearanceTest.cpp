// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/PortalAppearance.h"

#include "platform/linux/QtMainThread.h"
#include "platform/simulated/FakeScheduler.h"
#include "tests/desktop/ScriptedService.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/EventLoop.h"

#include <QDBusVariant>

#include <gtest/gtest.h>

namespace nightjar {
namespace {

QVariant boxed(const QVariant& value) {
    return QVariant::fromValue(QDBusVariant(value));
}

class PortalAppearanceTest : public ::testing::Test {
protected:
    std::unique_ptr<ScriptedService> startPortal(const QVariant& scheme) {
        auto service =
            std::make_unique<ScriptedService>(bus.connect(), QStringLiteral("org.freedesktop.portal.Desktop"),
                                              QStringLiteral("/org/freedesktop"));
        service->on("ReadOne", {boxed(scheme)});
        return service;
    }
    static void change(ScriptedService& sender, const QVariant& scheme, const char* key = "color-scheme") {
        sender.tell(QStringLiteral("/org/freedesktop/portal/desktop"),
                    QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("SettingChanged"),
                    {QStringLiteral("org.freedesktop.appearance"), QString::fromLatin1(key), boxed(scheme)});
    }
    bool turns(ColorScheme scheme) {
        return runEventsUntil([&] { return appearance.colorScheme() == scheme; });
    }
    void listen() {
        appearance.setListener([this] { ++changes; });
    }

    PrivateBus bus;
    QtMainThread mainThread;
    FakeScheduler scheduler;
    BusConnector connector{mainThread, scheduler, [this] { return bus.connect(); }};
    PortalAppearance appearance{connector};
    int changes = 0;
};

TEST_F(PortalAppearanceTest, followsTheDesktop) {
    const auto portal = startPortal(1U);
    listen();
    EXPECT_EQ(appearance.colorScheme(), ColorScheme::light) << "nobody has been waited for";
    ASSERT_TRUE(turns(ColorScheme::dark));
    EXPECT_EQ(changes, 1);
    for (const uint noDark : {2U, 0U, 7U}) {
        change(*portal, 1U);
        ASSERT_TRUE(turns(ColorScheme::dark));
        change(*portal, noDark);
        ASSERT_TRUE(turns(ColorScheme::light));
    }
}

TEST_F(PortalAppearanceTest, readsAnOldPortalInItsWay) {
    const auto portal = startPortal(0U);
    portal->refuse("ReadOne", QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"));
    portal->on("Read", {boxed(boxed(1U))});
    listen();
    EXPECT_TRUE(turns(ColorScheme::dark));
}

TEST_F(PortalAppearanceTest, believesThePortalAloneAndOnlyWhatIsANumber) {
    const auto portal = startPortal(0U);
    ScriptedService stranger(bus.connect(), QStringLiteral("org.example.Stranger"),
                             QStringLiteral("/org/freedesktop"));
    listen();
    ASSERT_TRUE(runEventsUntil([&] { return portal->count("ReadOne") == 1; }));
    ASSERT_TRUE(portal->isHeardBy(connector.bus()));
    change(stranger, 1U);
    change(*portal, QStringLiteral("1"));
    change(*portal, 1U, "accent-color");
    ASSERT_TRUE(stranger.isHeardBy(connector.bus()));
    ASSERT_TRUE(portal->isHeardBy(connector.bus()));
    EXPECT_EQ(appearance.colorScheme(), ColorScheme::light);
    EXPECT_EQ(changes, 0);
}

TEST_F(PortalAppearanceTest, asksAPortalThatStartsLater) {
    listen();
    ASSERT_TRUE(runEventsUntil([&] { return connector.isConnected(); }));
    auto portal = startPortal(1U);
    ASSERT_TRUE(turns(ColorScheme::dark));
    portal.reset();
    portal = startPortal(2U);
    EXPECT_TRUE(turns(ColorScheme::light));
}

TEST_F(PortalAppearanceTest, aFixedSchemeAsksNobody) {
    BusConnector untouched(mainThread, scheduler, [this] { return bus.connect(); });
    for (const auto& [word, scheme] :
         {std::pair("dark", ColorScheme::dark), std::pair("light", ColorScheme::light)}) {
        PortalAppearance fixed(untouched, word);
        fixed.setListener([] {});
        EXPECT_EQ(fixed.colorScheme(), scheme);
    }
    EXPECT_FALSE(runEventsUntil([&] { return untouched.isConnected(); }, std::chrono::milliseconds(100)));
}

} // namespace
} // namespace nightjar
