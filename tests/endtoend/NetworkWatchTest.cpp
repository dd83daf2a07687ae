// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/network/NetworkWatch.h"
#include "tests/network/NetworkBed.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/EventLoop.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* left = "Device left the network";
constexpr const char* returned = "Device returned to the network";

AvahiSettings hurried() {
    AvahiSettings settings;
    settings.holding = 2s;
    settings.prober.period = settings.prober.usualPeriod = 1500ms;
    settings.prober.memoryPause = 800ms;
    settings.prober.memory = 1100ms;
    settings.prober.suspectPause = 500ms;
    settings.prober.gonePause = settings.prober.usualGonePause = 1s;
    settings.prober.timeoutsUntilGone = 2;
    settings.prober.doubtLimit = 3s;
    return settings;
}

/// The controller on the real daemon of Avahi, in networks of the test's own with a lamp and a shelf. For the
/// controller ten seconds pass in one.
class NetworkWatchTest : public ::testing::Test {
protected:
    static constexpr int hurry = 10;

    void SetUp() override {
        if (const auto obstacle = bed::obstacle())
            GTEST_SKIP() << "Not tested with the real daemon: " << *obstacle;
        m_us.emplace();
        m_lampComputer.emplace();
        m_shelfComputer.emplace();
        m_network.emplace(1);
        m_network->connect(*m_us, QStringLiteral("eth0"), 1);
        m_network->connect(*m_lampComputer, QStringLiteral("eth0"), 2);
        m_network->connect(*m_shelfComputer, QStringLiteral("eth0"), 3);
        m_daemon.emplace(*m_us, QStringLiteral("us"), m_bus.address());
        m_shelf = start(*m_shelfComputer, *m_network, 3, QStringLiteral("shelf"));
    }
    [[nodiscard]] static std::unique_ptr<bed::Program>
    start(const bed::Computer& computer, const bed::Switch& network, int host, const QString& name) {
        return std::make_unique<bed::Program>(
            computer.inside({QStringLiteral("python3"), QStringLiteral(NIGHTJAR_MDNS_DEVICE),
                             network.address(host), QStringLiteral("_ssh._tcp"), QStringLiteral("1"), name}));
    }
    void powerOn() { m_lamp = start(*m_lampComputer, *m_network, 2, QStringLiteral("lamp")); }
    void trackLamp() {
        powerOn();
        m_watch.emplace([this] { return m_bus.connect(); }, [this] { return m_us->openLinkSocket(); },
                        hurried(), hurry);
        m_watch->browser.start();
        ASSERT_TRUE(runEventsUntil([&] { return m_watch->isOnline("lamp") && m_watch->isOnline("shelf"); }));
        m_watch->trackWithAlert("lamp", 60);
    }
    [[nodiscard]] bool lampBecomes(bool isOnline) {
        return runEventsUntil([&] { return m_watch->isOnline("lamp") == isOnline; }, 50s);
    }
    /// Lets time pass for the controller.
    void live(std::chrono::seconds time) {
        const auto end = m_watch->hurriedNow() + time;
        EXPECT_TRUE(runEventsUntil([&] { return m_watch->hurriedNow() >= end; }, 60s));
    }

    PrivateBus m_bus;
    std::optional<bed::Computer> m_us;
    std::optional<bed::Computer> m_lampComputer;
    std::optional<bed::Computer> m_shelfComputer;
    std::optional<bed::Switch> m_network;
    std::optional<bed::Switch> m_otherNetwork;
    std::optional<bed::Avahi> m_daemon;
    std::unique_ptr<bed::Program> m_lamp;
    std::unique_ptr<bed::Program> m_lampElsewhere;
    std::unique_ptr<bed::Program> m_shelf;
    std::optional<testing::NetworkWatch> m_watch;
};

TEST_F(NetworkWatchTest, aDeviceWithoutPowerOrCableAlertsOnceAndItsReturnIsToldOnce) {
    trackLamp();
    m_lamp->kill();
    ASSERT_TRUE(lampBecomes(false));
    EXPECT_THAT(m_watch->told(), IsEmpty());
    live(40s);
    EXPECT_THAT(m_watch->told(), IsEmpty()) << "within its delay";
    live(200s);
    ASSERT_THAT(m_watch->told(), ElementsAre(left));
    powerOn();
    ASSERT_TRUE(lampBecomes(true));
    live(30s);
    ASSERT_THAT(m_watch->told(), ElementsAre(left, returned));

    m_network->pull(2);
    ASSERT_TRUE(lampBecomes(false));
    live(200s);
    ASSERT_THAT(m_watch->told(), ElementsAre(left, returned, left));
    m_network->plugIn(2);
    ASSERT_TRUE(lampBecomes(true));
    live(30s);
    EXPECT_THAT(m_watch->told(), ElementsAre(left, returned, left, returned));
}

TEST_F(NetworkWatchTest, aDeviceThatDropsOneOfTwoInterfacesHasNotLeft) {
    m_otherNetwork.emplace(2);
    m_otherNetwork->connect(*m_us, QStringLiteral("wlan0"), 1);
    m_otherNetwork->connect(*m_lampComputer, QStringLiteral("wlan0"), 2);
    m_lampElsewhere = start(*m_lampComputer, *m_otherNetwork, 2, QStringLiteral("lamp"));
    trackLamp();
    ASSERT_TRUE(runEventsUntil([&] { return m_watch->device("lamp")->interfaceNames.size() == 2; }));

    m_otherNetwork->pull(2);
    live(200s);
    EXPECT_TRUE(m_watch->isOnline("lamp"));
    EXPECT_THAT(m_watch->told(), IsEmpty());

    m_lamp->kill();
    ASSERT_TRUE(lampBecomes(false)) << "what was heard on the other does not hide it";
    live(150s);
    EXPECT_THAT(m_watch->told(), ElementsAre(left));
}

TEST_F(NetworkWatchTest, aNewScanNeitherRevivesADeadDeviceNorAlertsForIt) {
    trackLamp();
    m_lamp->kill();
    ASSERT_TRUE(lampBecomes(false));
    m_watch->browser.stop();
    // The daemon still remembers that there is such a service.
    m_watch->browser.start();
    ASSERT_TRUE(runEventsUntil([&] { return m_watch->isOnline("shelf"); }));
    live(250s);
    EXPECT_FALSE(m_watch->isOnline("lamp"));
    EXPECT_THAT(m_watch->told(), IsEmpty());
    EXPECT_EQ(m_watch->browser.monitoringStatus(*m_watch->device("lamp")),
              "Waiting to see this device online");
}

} // namespace
} // namespace nightjar
