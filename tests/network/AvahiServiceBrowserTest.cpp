// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/network/BrowserRig.h"
#include "tests/network/FakeAvahi.h"
#include "tests/network/FakeKernel.h"
#include "tests/platform/PrivateBus.h"

#include <gmock/gmock.h>

#include <QFileInfo>
#include <QTemporaryDir>

#include <optional>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Kind = ServiceBrowserState::Kind;

const std::string ssh = "_ssh._tcp";
const std::string http = "_http._tcp";

/// Everything about a hundred times as fast.
AvahiSettings hurried() {
    AvahiSettings settings;
    settings.answerTimeout = 500ms;
    settings.coalescing = 20ms;
    settings.holding = 300ms;
    settings.linkPatience = 300ms;
    settings.startPause = 100ms;
    settings.refusedPause = 100ms;
    settings.pingPeriod = 100ms;
    settings.pingTimeout = 500ms;
    settings.pingPause = 50ms;
    settings.prober.period = settings.prober.usualPeriod = 200ms;
    settings.prober.memoryPause = 100ms;
    settings.prober.memory = 0ms;
    settings.prober.suspectPause = 20ms;
    settings.prober.gonePause = settings.prober.usualGonePause = 50ms;
    settings.prober.shortestTimeout = 0ms;
    settings.prober.doubtLimit = 300ms;
    return settings;
}

class AvahiServiceBrowserTest : public ::testing::Test {
protected:
    void startDaemon() { m_daemon.emplace(m_bus.connect()); }
    /// Until the daemon browses the types.
    [[nodiscard]] bool browse(const std::vector<std::string>& types = {ssh}) {
        for (const auto& type : types)
            m_rig.browser().browse(type);
        return isBrowsed(types);
    }
    [[nodiscard]] bool isBrowsed(const std::vector<std::string>& types = {ssh}) {
        return runEventsUntil([&] {
                   return m_daemon && std::ranges::all_of(
                                          types, [&](const auto& type) { return m_daemon->browses(type); });
               }) &&
               m_rig.becomes(Kind::ready);
    }
    [[nodiscard]] bool isHeard() { return m_daemon->service().isHeardBy(m_rig.bus()); }

    PrivateBus m_bus;
    std::optional<FakeAvahi> m_daemon;
    FakeKernel m_kernel; ///< says nothing of its own accord
    BrowserRig m_rig{[this] { return m_bus.connect(); }, hurried(), [this] { return m_kernel.openSocket(); }};
};

TEST_F(AvahiServiceBrowserTest, tellsCompleteSetsPerTypeAndNothingOfThisComputer) {
    startDaemon();
    ASSERT_TRUE(browse({ssh, http}));
    m_daemon->announce(ssh, "fox", 4, 1, 0);
    m_daemon->announce(ssh, "fox", 4, 1, 1);
    m_daemon->announce(ssh, "fox", 4, 2, 0);
    m_daemon->announce(ssh, "this computer", 4 | 8);
    m_daemon->announce(http, "Überraschung\n\t\"x\" \u202e", 4);
    m_daemon->finish(ssh);
    m_daemon->finish(http);
    ASSERT_TRUE(m_rig.tells(ssh, {"fox@net1", "fox@net2"}));
    ASSERT_TRUE(m_rig.tells(http, {"Überraschung\n\t\"x\" \u202e@net1"}));
    EXPECT_EQ(m_rig.sets[ssh].front().domain, "local.");
    EXPECT_EQ(m_rig.states.front().kind, Kind::settingUp);

    m_daemon->withdraw(ssh, "fox", 1, 0);
    m_daemon->withdraw(ssh, "fox", 2, 0);
    EXPECT_TRUE(m_rig.tells(ssh, {"fox@net1"}));
    m_daemon->withdraw(ssh, "fox", 1, 1);
    EXPECT_TRUE(m_rig.tells(ssh, {}));
}

TEST_F(AvahiServiceBrowserTest, oddSignalsChangeNothing) {
    startDaemon();
    ASSERT_TRUE(browse({ssh, http}));
    m_daemon->item("ItemNew", ssh, "capitals", QStringLiteral("_SSH._TCP"), QStringLiteral("LOCAL."));
    m_daemon->item("ItemNew", ssh, "other type", QStringLiteral("_ftp._tcp"), QStringLiteral("local"));
    m_daemon->item("ItemNew", ssh, "other domain", QStringLiteral("_ssh._tcp"),
                   QStringLiteral("example.org"));
    m_daemon->announce(ssh, std::string());
    m_daemon->announce(ssh, std::string(5'000, 'x'));
    m_daemon->tell(ssh, "ItemNew", {QStringLiteral("what?")});
    m_daemon->tell(ssh, "ItemRemove", {1, 0, QStringLiteral("capitals")});
    m_daemon->withdraw(ssh, "nobody");
    m_daemon->service().tell(
        QStringLiteral("/Client9/ServiceBrowser9"), avahi::serviceBrowser, QStringLiteral("ItemNew"),
        {1, 0, QStringLiteral("stranger"), QStringLiteral("_ssh._tcp"), QStringLiteral("local"), 4u});
    auto impostor =
        QDBusMessage::createSignal(m_daemon->path(ssh), avahi::serviceBrowser, QStringLiteral("ItemNew"));
    impostor.setArguments(
        {1, 0, QStringLiteral("impostor"), QStringLiteral("_ssh._tcp"), QStringLiteral("local"), 4u});
    ASSERT_TRUE(m_bus.connect().send(impostor));
    m_daemon->finish(ssh);

    EXPECT_TRUE(m_rig.tells(ssh, {"capitals@net1"}));
    EXPECT_EQ(m_rig.sets[ssh].front().type, ssh);
    EXPECT_TRUE(m_rig.becomes(Kind::ready));
}

TEST_F(AvahiServiceBrowserTest, aDaemonThatComesLaterIsFound) {
    m_rig.browser().browse(ssh);
    ASSERT_TRUE(m_rig.becomes(Kind::waiting));
    EXPECT_EQ(m_rig.states.back().code, 0);
    EXPECT_FALSE(m_rig.states.back().description.empty());
    startDaemon();

    EXPECT_TRUE(isBrowsed());
}

TEST_F(AvahiServiceBrowserTest, theBusIsAskedAgainForADaemonThatDoesNotStart) {
    QTemporaryDir folder;
    const auto attempts = folder.filePath(QStringLiteral("attempts"));
    m_bus.makeActivatable(avahi::service, QStringLiteral("/bin/sh -c \"echo >> %1; exit 1\"").arg(attempts));
    m_rig.browser().browse(ssh);

    EXPECT_TRUE(runEventsUntil([&] { return QFileInfo(attempts).size() >= 3; }));
    EXPECT_EQ(m_rig.states.back().kind, Kind::waiting);
    startDaemon();
    EXPECT_TRUE(isBrowsed());
}

TEST_F(AvahiServiceBrowserTest, refusalsAndFailuresAreToldAndTriedAgain) {
    struct Case {
        const char* method;
        const char* error;
        Kind kind;
        int code;
    };
    startDaemon();
    for (const auto& [method, error, kind, code] :
         {Case{"ServiceBrowserPrepare", "org.freedesktop.DBus.Error.AccessDenied", Kind::waiting,
               ServiceBrowserState::policyDenied},
          Case{"Start", "org.freedesktop.Avahi.NotPermittedError", Kind::waiting,
               ServiceBrowserState::policyDenied},
          Case{"ServiceBrowserPrepare", "org.freedesktop.Avahi.InvalidServiceTypeError", Kind::failed, 0},
          Case{"ServiceBrowserPrepare", "org.freedesktop.DBus.Error.UnknownMethod", Kind::failed, 0}}) {
        SCOPED_TRACE(error);
        m_daemon->service().refuse(method, QString::fromLatin1(error), QStringLiteral("Not today"));
        m_rig.browser().browse(ssh);
        ASSERT_TRUE(m_rig.becomes(kind));
        EXPECT_EQ(m_rig.states.back().code, code);
        EXPECT_EQ(m_rig.states.back().description, "Not today");

        m_daemon->answerAll();
        EXPECT_TRUE(m_rig.becomes(Kind::ready));
        m_rig.browser().cancel();
    }
}

TEST_F(AvahiServiceBrowserTest, aBrowserThatFailsKeepsItsSetUntilTheNextHasLookedAround) {
    startDaemon();
    ASSERT_TRUE(browse());
    m_daemon->announce(ssh, "fox");
    m_daemon->finish(ssh);
    ASSERT_TRUE(m_rig.tells(ssh, {"fox@net1"}));
    m_daemon->tell(ssh, "Failure", {QStringLiteral("Out of order")});
    ASSERT_TRUE(m_rig.becomes(Kind::failed));
    EXPECT_EQ(m_rig.states.back().description, "Out of order");

    ASSERT_TRUE(isBrowsed());
    m_daemon->announce(ssh, "owl");
    m_daemon->finish(ssh);
    EXPECT_TRUE(m_rig.tells(ssh, {"fox@net1", "owl@net1"}));
    EXPECT_TRUE(m_rig.tells(ssh, {"owl@net1"}));
}

TEST_F(AvahiServiceBrowserTest, aDaemonThatDiesAndComesBackMakesNobodyLeave) {
    startDaemon();
    ASSERT_TRUE(browse());
    m_daemon->announce(ssh, "fox");
    m_daemon->announce(ssh, "owl");
    m_daemon->finish(ssh);
    ASSERT_TRUE(m_rig.tells(ssh, {"fox@net1", "owl@net1"}));
    for (int round = 0; round < 3; ++round) {
        m_daemon.reset();
        ASSERT_TRUE(m_rig.becomes(Kind::waiting));
        startDaemon();
        ASSERT_TRUE(isBrowsed());
        m_daemon->finish(ssh);
        m_daemon->announce(ssh, "fox");
        m_daemon->announce(ssh, "owl");
        ASSERT_TRUE(isHeard());
    }
    EXPECT_EQ(m_rig.smallest[ssh], 2u);

    m_daemon.reset();
    ASSERT_TRUE(m_rig.becomes(Kind::waiting));
    startDaemon();
    const int tellings = m_rig.tellings;
    ASSERT_TRUE(isBrowsed());
    EXPECT_TRUE(runEventsUntil([&] { return m_rig.tellings > tellings; })) << "the old set holds again";
    EXPECT_EQ(m_rig.sets[ssh].size(), 2u);
    m_daemon->announce(ssh, "owl");
    m_daemon->finish(ssh);
    EXPECT_TRUE(m_rig.tells(ssh, {"owl@net1"}));
    EXPECT_EQ(m_rig.smallest[ssh], 1u);
}

TEST_F(AvahiServiceBrowserTest, aFrozenDaemonIsNoticedAndItsBrowsersAreFreedAfterwards) {
    startDaemon();
    ASSERT_TRUE(browse());
    m_daemon->announce(ssh, "fox");
    m_daemon->finish(ssh);
    ASSERT_TRUE(m_rig.tells(ssh, {"fox@net1"}));
    const auto oldPath = m_daemon->path(ssh);
    m_daemon->hang();
    ASSERT_TRUE(m_rig.becomes(Kind::waiting));

    m_daemon->answerAll();
    ASSERT_TRUE(m_rig.becomes(Kind::ready));
    EXPECT_NE(m_daemon->path(ssh), oldPath);
    ASSERT_EQ(m_daemon->service().count("Free"), 1u);
    EXPECT_EQ(m_daemon->service().calls("Free").front().path(), oldPath);
    EXPECT_EQ(m_rig.smallest[ssh], 1u);
}

TEST_F(AvahiServiceBrowserTest, aBusThatSaysNothingIsWaitedForWithoutStanding) {
    m_bus.freeze();
    m_rig.browser().browse(ssh);
    EXPECT_TRUE(m_rig.becomes(Kind::waiting));
    m_bus.thaw();
    startDaemon();

    EXPECT_TRUE(isBrowsed());
}

TEST_F(AvahiServiceBrowserTest, theDeadAreTakenOutAndComeBack) {
    startDaemon();
    m_daemon->dead = {"ghost"};
    ASSERT_TRUE(browse());
    for (const auto* name : {"fox", "ghost", "owl"})
        m_daemon->announce(ssh, name, 4 | 1);
    m_daemon->finish(ssh);
    ASSERT_TRUE(m_rig.tells(ssh, {"fox@net1", "owl@net1"}));

    m_daemon->dead = {"ghost", "owl"};
    ASSERT_TRUE(m_rig.tells(ssh, {"fox@net1"}));
    m_daemon->dead = {};
    ASSERT_TRUE(m_rig.tells(ssh, {"fox@net1", "ghost@net1", "owl@net1"}));

    m_daemon->dead = {"fox", "ghost", "owl"};
    ASSERT_TRUE(m_rig.becomes(Kind::waiting));
    ASSERT_TRUE(m_rig.tells(ssh, {}));
    EXPECT_TRUE(m_rig.becomes(Kind::ready));
}

TEST_F(AvahiServiceBrowserTest, whatOurOwnInterfacesTakeAlongHasNotLeft) {
    for (const int index : {1, 2}) {
        m_kernel.setLink(index, "net" + std::to_string(index), true);
        m_kernel.addAddress(index, index == 1 ? "10.0.1.7" : "10.0.2.7");
    }
    m_kernel.finish();
    startDaemon();
    ASSERT_TRUE(browse());
    m_daemon->announce(ssh, "fox", 4, 1);
    m_daemon->announce(ssh, "fox", 4, 2);
    m_daemon->announce(ssh, "owl", 4, 2);
    m_daemon->finish(ssh);
    const std::vector<std::string> all{"fox@net1", "fox@net2", "owl@net2"};
    ASSERT_TRUE(m_rig.tells(ssh, all));

    m_kernel.setLink(2, "net2", false);
    m_daemon->withdraw(ssh, "fox", 2);
    m_daemon->withdraw(ssh, "owl", 2);
    ASSERT_TRUE(m_rig.tells(ssh, {"fox@net1"}));
    EXPECT_THAT(m_rig.outOfSight, ElementsAre("fox", "owl"));
    EXPECT_TRUE(m_rig.becomes(Kind::ready));

    m_rig.smallest.clear();
    m_kernel.setLink(1, "net1", false);
    m_daemon->withdraw(ssh, "fox", 1);
    ASSERT_TRUE(m_rig.becomes(Kind::waiting));
    const int tellings = m_rig.tellings;
    m_kernel.setLink(1, "net1", true);
    ASSERT_TRUE(m_rig.becomes(Kind::ready));
    ASSERT_TRUE(runEventsUntil([&] { return m_rig.tellings > tellings; }));
    EXPECT_EQ(m_rig.told(ssh), std::vector<std::string>{"fox@net1"});
    EXPECT_TRUE(m_rig.tells(ssh, {})) << "it has not come back with the link";
    EXPECT_EQ(m_rig.outOfSight.size(), 2u);
}

TEST_F(AvahiServiceBrowserTest, cancelFreesTheBrowsersAndTellsNothingMore) {
    startDaemon();
    ASSERT_TRUE(browse());
    const auto path = m_daemon->path(ssh);
    m_daemon->finish(ssh);
    ASSERT_TRUE(isHeard());
    m_rig.browser().browse(http);
    m_rig.browser().cancel();
    m_rig.sets.clear();
    m_rig.states.clear();
    // The second one was still being made.
    ASSERT_TRUE(runEventsUntil([&] { return m_daemon->service().count("Free") == 2; }));
    m_daemon->announce(http, "fox");
    m_daemon->announce(ssh, "fox");
    m_daemon->finish(ssh);
    ASSERT_TRUE(isHeard());
    EXPECT_THAT(m_rig.sets, IsEmpty());
    EXPECT_THAT(m_rig.states, IsEmpty());

    ASSERT_TRUE(browse());
    EXPECT_NE(m_daemon->path(ssh), path);
    m_daemon->finish(ssh);
    EXPECT_TRUE(m_rig.tells(ssh, {}));
}

TEST_F(AvahiServiceBrowserTest, fiveThousandInstancesAreAllTold) {
    startDaemon();
    ASSERT_TRUE(browse());
    for (int i = 0; i < 5'000; ++i)
        m_daemon->announce(ssh, "device " + std::to_string(i));
    m_daemon->finish(ssh);

    EXPECT_TRUE(runEventsUntil([&] { return m_rig.sets[ssh].size() == 5'000; }));
    EXPECT_TRUE(m_rig.becomes(Kind::ready));
}

} // namespace
} // namespace nightjar
