// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/LinkSight.h"

#include "platform/simulated/FakeScheduler.h"
#include "tests/network/FakeKernel.h"

#include <gtest/gtest.h>

namespace nightjar {
namespace {

using namespace std::chrono_literals;

/// A computer with "eth0" in 10.0.1.0/24 and "wlan0" in 10.0.2.0/24.
class LinkSightTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_sight.begin();
        m_kernel.setLink(1, "lo", true, IFF_LOOPBACK | IFF_MULTICAST);
        m_kernel.addAddress(1, "127.0.0.1");
        m_kernel.setLink(4, "tun0", true, IFF_POINTOPOINT | IFF_MULTICAST);
        m_kernel.addAddress(4, "10.0.9.1");
        m_kernel.setLink(2, "eth0", true);
        m_kernel.setLink(3, "wlan0", true);
        m_kernel.addAddress(2, "10.0.1.7");
        m_kernel.addAddress(3, "10.0.2.7");
        m_sight.lookNow();
        EXPECT_TRUE(m_sight.canHear()) << "nothing is known for certain yet";
        m_kernel.finish();
        m_sight.lookNow();
    }
    void pass(std::chrono::milliseconds time) {
        m_sight.lookNow();
        m_scheduler.advance(time);
    }
    /// What a release would do to what was heard on it.
    std::string fate(const std::string& name) {
        m_sight.lookNow();
        return m_sight.keeps(name) ? "kept" : m_sight.judges(name) ? "judged" : "out of sight";
    }

    FakeScheduler m_scheduler;
    AvahiSettings m_settings;
    FakeKernel m_kernel;
    NetworkLinks m_links{[this] { return m_kernel.openSocket(); }};
    std::map<std::string, std::string> m_released; ///< the fates at the last release
    LinkSight m_sight{m_links,
                      m_scheduler,
                      m_settings,
                      {.usableChanged = [](int, bool) {},
                       .released =
                           [this] {
                               for (const auto* name : {"eth0", "wlan0"})
                                   m_released[name] = fate(name);
                           }}};
};

TEST_F(LinkSightTest, whatWasHeardIsKeptUntilTheInterfaceIsBackAndABitLonger) {
    EXPECT_EQ(fate("eth0"), "judged");
    m_kernel.setLink(2, "eth0", false);
    pass(100s);
    EXPECT_EQ(fate("eth0"), "kept");
    EXPECT_EQ(fate("wlan0"), "judged");
    EXPECT_TRUE(m_sight.canHear());

    m_kernel.setLink(2, "eth0", true);
    pass(11s);
    EXPECT_EQ(fate("eth0"), "kept");
    EXPECT_TRUE(m_released.empty());
    pass(2s);
    EXPECT_EQ(m_released["eth0"], "judged");
}

TEST_F(LinkSightTest, whileAnotherInterfaceHearsItIsGivenUpAfterTwoMinutes) {
    m_kernel.removeLink(2);
    pass(119s);
    EXPECT_EQ(fate("eth0"), "kept");
    pass(2s);
    EXPECT_EQ(m_released["eth0"], "out of sight");

    m_kernel.setLink(7, "eth0", true);
    m_kernel.addAddress(7, "10.0.1.7");
    pass(13s);
    EXPECT_EQ(fate("eth0"), "judged");
}

TEST_F(LinkSightTest, withoutAnyInterfaceNothingIsGivenUp) {
    m_kernel.setLink(2, "eth0", false);
    m_kernel.removeAddress(3, "10.0.2.7");
    pass(10h);
    EXPECT_FALSE(m_sight.canHear());
    EXPECT_EQ(fate("eth0"), "kept");
    EXPECT_EQ(fate("wlan0"), "kept");

    m_kernel.addAddress(3, "10.0.2.9");
    pass(13s);
    EXPECT_TRUE(m_sight.canHear());
    EXPECT_EQ(m_released["wlan0"], "judged") << "the same network, though another address";
    pass(120s);
    EXPECT_EQ(m_released["eth0"], "out of sight");
}

TEST_F(LinkSightTest, anotherNetworkPutsTheFormerOneOutOfSight) {
    m_kernel.setLink(3, "wlan0", false);
    m_kernel.removeAddress(3, "10.0.2.7");
    pass(5s);
    m_kernel.setLink(3, "wlan0", true);
    m_kernel.addAddress(3, "192.168.0.2");
    pass(13s);
    EXPECT_EQ(m_released["wlan0"], "out of sight");
    EXPECT_EQ(fate("wlan0"), "judged") << "what is heard from now on";

    m_kernel.addAddress(2, "10.0.5.7");
    pass(1s);
    EXPECT_EQ(fate("eth0"), "judged") << "one network more takes none away";
    m_kernel.removeAddress(2, "10.0.1.7");
    EXPECT_EQ(fate("eth0"), "kept");
    pass(13s);
    EXPECT_EQ(m_released["eth0"], "out of sight");
}

TEST_F(LinkSightTest, aLinkThatIsAwayForAMomentIsNotMissed) {
    m_kernel.setLink(2, "eth0", false);
    m_kernel.setLink(2, "eth0", true);
    EXPECT_EQ(fate("eth0"), "kept");
}

} // namespace
} // namespace nightjar
