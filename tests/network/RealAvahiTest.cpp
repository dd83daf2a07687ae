// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// The real daemon of Avahi in networks of the test's own.
#include "tests/network/BrowserRig.h"
#include "tests/network/NetworkBed.h"
#include "tests/platform/PrivateBus.h"

#include <gmock/gmock.h>

#include <QFile>

#include <optional>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::SizeIs;
using Kind = ServiceBrowserState::Kind;

const std::string ssh = "_ssh._tcp";

/// What our devices say of the place of a service lives for a second, not two minutes.
AvahiSettings hurried() {
    AvahiSettings settings;
    settings.holding = 3s;
    settings.linkPatience = 2s;
    settings.pingPeriod = 500ms;
    settings.pingTimeout = 1s;
    settings.pingPause = 500ms;
    settings.prober.period = settings.prober.usualPeriod = 1500ms;
    settings.prober.memoryPause = 800ms;
    settings.prober.memory = 1100ms;
    settings.prober.suspectPause = 1s;
    settings.prober.gonePause = settings.prober.usualGonePause = 1s;
    return settings;
}

QString mdnsDevice() {
    return QStringLiteral(NIGHTJAR_MDNS_DEVICE);
}

class RealAvahiTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (const auto obstacle = bed::obstacle())
            GTEST_SKIP() << "Not tested with the real daemon: " << *obstacle;
        m_us.emplace();
        m_device.emplace();
        m_switch.emplace(1);
        m_switch->connect(*m_us, QStringLiteral("eth0"), 1);
        m_switch->connect(*m_device, QStringLiteral("eth0"), 2);
    }

    void startDaemon(const QList<bed::Avahi::Service>& ownServices = {}) {
        m_daemon.emplace(*m_us, QStringLiteral("us"), m_bus.address(), ownServices);
    }
    [[nodiscard]] std::unique_ptr<bed::Program> startDevices(const QStringList& names, int host = 2) {
        const auto& computer = host == 2 ? *m_device : *m_other;
        return std::make_unique<bed::Program>(
            computer.inside(QStringList{QStringLiteral("python3"), mdnsDevice(), m_switch->address(host),
                                        QString::fromStdString(ssh), QStringLiteral("1")} +
                            names));
    }
    [[nodiscard]] bool browse() {
        m_rig.browser().browse(ssh);
        return m_rig.becomes(Kind::ready);
    }

    PrivateBus m_bus;
    BrowserRig m_rig{[this] { return m_bus.connect(); }, hurried(),
                     [this] { return m_us->openLinkSocket(); }};
    std::optional<bed::Computer> m_us;
    std::optional<bed::Computer> m_device;
    std::optional<bed::Computer> m_other;
    std::optional<bed::Switch> m_switch;
    std::optional<bed::Avahi> m_daemon;
};

TEST_F(RealAvahiTest, namesArriveAsTheyWereAnnouncedAndAGoodbyeCounts) {
    startDaemon({{QStringLiteral("our own"), QString::fromStdString(ssh)}});
    std::optional<bed::Avahi> device;
    device.emplace(
        *m_device, QStringLiteral("device"), QString(),
        QList<bed::Avahi::Service>{{QStringLiteral("Küche. \\ \"Drucker\" <b>"), QString::fromStdString(ssh)},
                                   {QStringLiteral("猫 🐈"), QString::fromStdString(ssh)}});
    ASSERT_TRUE(browse());
    ASSERT_TRUE(m_rig.tells(ssh, {"Küche. \\ \"Drucker\" <b>@eth0", "猫 🐈@eth0"}));

    device->program().end();
    EXPECT_TRUE(m_rig.tells(ssh, {}, 5s));
}

class RealDeviceTest : public RealAvahiTest {
protected:
    void SetUp() override {
        RealAvahiTest::SetUp();
        if (IsSkipped())
            return;
        m_other.emplace();
        m_switch->connect(*m_other, QStringLiteral("eth0"), 3);
        startDaemon();
        m_lamp = startDevices({QStringLiteral("lamp")});
        m_shelf = startDevices({QStringLiteral("shelf")}, 3);
        ASSERT_TRUE(browse());
        ASSERT_TRUE(m_rig.tells(ssh, both));
    }

    const std::vector<std::string> both{"lamp@eth0", "shelf@eth0"};
    std::unique_ptr<bed::Program> m_lamp;
    std::unique_ptr<bed::Program> m_shelf;
};

TEST_F(RealDeviceTest, withoutPowerItLeavesAndItComesBack) {
    m_lamp->kill();
    ASSERT_TRUE(m_rig.tells(ssh, {"shelf@eth0"}, 40s));

    m_lamp = startDevices({QStringLiteral("lamp")});
    EXPECT_TRUE(m_rig.tells(ssh, both));
}

TEST_F(RealDeviceTest, withoutItsCableItLeavesAndItComesBack) {
    m_switch->pull(2);
    ASSERT_TRUE(m_rig.tells(ssh, {"shelf@eth0"}, 40s));

    m_switch->plugIn(2);
    EXPECT_TRUE(m_rig.tells(ssh, both));
}

TEST_F(RealAvahiTest, aDeviceIsToldOnEachOfTwoNetworks) {
    bed::Switch second(2);
    second.connect(*m_us, QStringLiteral("wlan0"), 1);
    second.connect(*m_device, QStringLiteral("wlan0"), 2);
    startDaemon();
    const bed::Avahi device(*m_device, QStringLiteral("device"), QString(),
                            {{QStringLiteral("fox"), QString::fromStdString(ssh)}});
    ASSERT_TRUE(browse());
    ASSERT_TRUE(m_rig.tells(ssh, {"fox@eth0", "fox@wlan0"}));
    m_rig.smallest.clear();

    m_us->run({QStringLiteral("ip"), QStringLiteral("link"), QStringLiteral("set"), QStringLiteral("wlan0"),
               QStringLiteral("down")});
    EXPECT_TRUE(m_rig.tells(ssh, {"fox@eth0"}));
    EXPECT_EQ(m_rig.smallest[ssh], 1u);
    EXPECT_THAT(m_rig.outOfSight, SizeIs(1));
}

TEST_F(RealDeviceTest, withoutACableOfOurOwnNobodyLeaves) {
    m_rig.smallest.clear();
    for (const bool isPulled : {true, false}) {
        if (isPulled)
            m_switch->pull(1);
        else
            m_us->run({QStringLiteral("ip"), QStringLiteral("link"), QStringLiteral("set"),
                       QStringLiteral("eth0"), QStringLiteral("down")});
        ASSERT_TRUE(m_rig.becomes(Kind::waiting));
        EXPECT_FALSE(runEventsUntil([&] { return m_rig.sets[ssh].size() < 2; }, 10s));
        m_switch->plugIn(1);
        m_us->run({QStringLiteral("ip"), QStringLiteral("link"), QStringLiteral("set"),
                   QStringLiteral("eth0"), QStringLiteral("up")});
        ASSERT_TRUE(m_rig.becomes(Kind::ready));
    }
    EXPECT_FALSE(runEventsUntil([&] { return m_rig.sets[ssh].size() < 2; }, 8s));
    EXPECT_EQ(m_rig.smallest[ssh], 2u);
}

TEST_F(RealAvahiTest, aDaemonThatIsKilledOrFrozenMakesNobodyLeave) {
    startDaemon();
    const auto devices = startDevices({QStringLiteral("device *5")});
    ASSERT_TRUE(browse());
    ASSERT_TRUE(runEventsUntil([&] { return m_rig.sets[ssh].size() == 5; }));
    m_rig.smallest.clear();

    m_daemon->program().freeze();
    ASSERT_TRUE(m_rig.becomes(Kind::waiting));
    m_daemon->program().thaw();
    ASSERT_TRUE(m_rig.becomes(Kind::ready));
    m_daemon->program().kill();
    ASSERT_TRUE(m_rig.becomes(Kind::waiting));
    startDaemon();
    ASSERT_TRUE(m_rig.becomes(Kind::ready));
    const auto newcomer = startDevices({QStringLiteral("newcomer")});
    ASSERT_TRUE(runEventsUntil([&] { return m_rig.sets[ssh].size() == 6; }));

    // Until after what was held has been let go.
    EXPECT_FALSE(runEventsUntil([&] { return m_rig.sets[ssh].size() < 6; }, 5s));
}

TEST_F(RealAvahiTest, aThirdOfThePacketsLostMakesNobodyLeave) {
    if (!QFile::exists(QStringLiteral("/usr/sbin/nft")))
        GTEST_SKIP() << "Not tested with loss: there is no program nft";
    startDaemon();
    const auto devices = startDevices({QStringLiteral("device *20")});
    ASSERT_TRUE(browse());
    ASSERT_TRUE(runEventsUntil([&] { return m_rig.sets[ssh].size() == 20; }));
    m_rig.smallest.clear();

    m_us->run({QStringLiteral("nft"),
               QStringLiteral("add table ip t; add chain ip t in { type filter hook input priority 0; }; "
                              "add rule ip t in udp dport 5353 numgen random mod 100 < 30 counter drop")});
    // Each of the twenty is asked about five times meanwhile.
    EXPECT_FALSE(runEventsUntil([&] { return m_rig.sets[ssh].size() < 20; }, 12s));
    EXPECT_EQ(m_rig.states.back().kind, Kind::ready);
}

} // namespace
} // namespace nightjar
