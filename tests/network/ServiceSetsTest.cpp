// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/ServiceSets.h"

#include "platform/simulated/FakeScheduler.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Place = ServiceSets::Place;

constexpr const char* ssh = "_ssh._tcp";

class ServiceSetsTest : public ::testing::Test {
protected:
    /// "name@interface" of the set that was told last.
    std::vector<std::string> told(const std::string& type = ssh) {
        std::vector<std::string> texts;
        for (const auto& instance : m_told.at(type))
            texts.push_back(instance.name + '@' + instance.interfaceName.value_or("?"));
        return texts;
    }
    void completeNow(const std::string& type = ssh) {
        m_sets.complete(type);
        m_scheduler.advance(0ms);
    }

    FakeScheduler m_scheduler;
    AvahiSettings m_settings;
    std::map<int, std::optional<std::string>> m_interfaces{{1, "eth0"}, {2, "wlan0"}, {3, std::nullopt}};
    std::set<std::string> m_dead; ///< "name@index"
    std::set<std::string> m_kept; ///< interfaces
    std::set<std::string> m_unseen;
    std::vector<std::string> m_outOfSight;
    bool m_mayTell = true;
    bool m_isUnsettled = false;
    std::map<std::string, std::vector<ServiceInstance>> m_told;
    int m_tellings = 0;
    ServiceSets m_sets{
        m_scheduler,
        m_settings,
        {.isThere = [this](const auto&, const std::string& name,
                           int index) { return !m_dead.contains(name + '@' + std::to_string(index)); },
         .interfaceName = [this](int index) -> std::optional<std::optional<std::string>> {
             const auto found = m_interfaces.find(index);
             if (found == m_interfaces.end())
                 return std::nullopt;
             return std::make_optional(found->second);
         },
         .isUnsettled = [this] { return m_isUnsettled; },
         .mayTell = [this] { return m_mayTell; },
         .keeps = [this](const std::string& name) { return m_kept.contains(name); },
         .judges = [this](const std::string& name) { return !m_unseen.contains(name); },
         .tell =
             [this](const std::string& type, const std::vector<ServiceInstance>& instances) {
                 m_told[type] = instances;
                 ++m_tellings;
             },
         .outOfSight =
             [this](const std::vector<ServiceInstance>& instances) {
                 for (const auto& instance : instances)
                     m_outOfSight.push_back(instance.name);
             }}};
};

TEST_F(ServiceSetsTest, whatIsThereIsToldSoonAndThatNothingIsOnlyAfterTheSearch) {
    m_sets.add(ssh, "fox", {1, 0});
    m_sets.add("_http._tcp", "owl", {1, 0});
    m_sets.remove("_http._tcp", "owl", {1, 0});
    m_scheduler.advance(200ms);
    EXPECT_THAT(told(), ElementsAre("fox@eth0"));
    m_scheduler.advance(1min);
    EXPECT_EQ(m_tellings, 1);

    completeNow(ssh);
    completeNow("_http._tcp");
    EXPECT_EQ(m_tellings, 2);
    EXPECT_THAT(told("_http._tcp"), IsEmpty());
}

TEST_F(ServiceSetsTest, anInstanceStaysWhileOneProtocolOfAnInterfaceHasIt) {
    for (const Place place : {Place{1, 0}, Place{1, 1}, Place{2, 0}, Place{1, 0}, Place{3, 0}})
        m_sets.add(ssh, "fox", place);
    completeNow();
    EXPECT_THAT(told(), ElementsAre("fox@?", "fox@eth0", "fox@wlan0"));

    EXPECT_FALSE(m_sets.remove(ssh, "fox", {1, 0}));
    EXPECT_FALSE(m_sets.remove(ssh, "fox", {1, 0}));
    EXPECT_FALSE(m_sets.remove(ssh, "owl", {1, 0}));
    m_scheduler.advance(1s);
    EXPECT_EQ(m_tellings, 1);

    EXPECT_TRUE(m_sets.remove(ssh, "fox", {1, 1}));
    EXPECT_TRUE(m_sets.remove(ssh, "fox", {3, 0}));
    EXPECT_TRUE(m_sets.remove(ssh, "fox", {2, 0}));
    m_scheduler.advance(1s);
    EXPECT_THAT(told(), IsEmpty());
}

TEST_F(ServiceSetsTest, changesThatComeTogetherAreToldOnceAndSoon) {
    completeNow();
    for (int i = 0; i < 1'000; ++i) {
        m_sets.add(ssh, "device " + std::to_string(i), {1, 0});
        if (i % 100 == 0)
            m_scheduler.advance(10ms);
    }
    m_scheduler.advance(110ms);

    EXPECT_EQ(m_tellings, 2);
    EXPECT_EQ(told().size(), 1'000u);
}

TEST_F(ServiceSetsTest, theSetWaitsForTheNameOfAnInterface) {
    m_sets.add(ssh, "fox", {9, 0});
    completeNow();
    EXPECT_EQ(m_tellings, 0);

    m_interfaces[9] = "usb0";
    m_sets.touchAllNow();
    m_scheduler.advance(0ms);
    EXPECT_THAT(told(), ElementsAre("fox@usb0"));
}

TEST_F(ServiceSetsTest, whatWasToldIsHeldForAWhileAfterANewBeginning) {
    for (const auto* name : {"dead", "fox", "goodbye", "owl"})
        m_sets.add(ssh, name, {1, 0});
    completeNow();
    const auto all = told();
    m_sets.restartAll();
    m_scheduler.advance(24h);
    EXPECT_EQ(m_tellings, 1);

    for (const auto* name : {"dead", "goodbye", "newcomer", "owl"})
        m_sets.add(ssh, name, {1, 0});
    EXPECT_TRUE(m_sets.isHeld(ssh, "owl"));
    EXPECT_FALSE(m_sets.isHeld(ssh, "newcomer"));
    completeNow();
    EXPECT_THAT(told(), ElementsAre("dead@eth0", "fox@eth0", "goodbye@eth0", "newcomer@eth0", "owl@eth0"));

    EXPECT_TRUE(m_sets.remove(ssh, "goodbye", {1, 0}));
    m_dead = {"dead@1"};
    m_sets.touch(ssh);
    m_scheduler.advance(1s);
    EXPECT_THAT(told(), ElementsAre("fox@eth0", "newcomer@eth0", "owl@eth0"));
    m_scheduler.advance(8s);
    EXPECT_EQ(told().size(), 3u);
    m_scheduler.advance(4s);
    EXPECT_THAT(told(), ElementsAre("newcomer@eth0", "owl@eth0"));
}

TEST_F(ServiceSetsTest, whatAnInterfaceTakesAlongIsKeptAndThenOutOfSight) {
    for (const auto* name : {"fox", "owl"})
        m_sets.add(ssh, name, {2, 0});
    m_sets.add(ssh, "fox", {1, 0});
    completeNow();
    m_kept = {"wlan0"};
    m_sets.remove(ssh, "fox", {2, 0});
    m_sets.remove(ssh, "owl", {2, 0});
    m_sets.remove(ssh, "fox", {1, 0});
    m_scheduler.advance(1s);
    EXPECT_THAT(told(), ElementsAre("fox@wlan0", "owl@wlan0"));
    EXPECT_THAT(m_outOfSight, IsEmpty()) << "it left eth0 by itself";

    m_kept.clear();
    m_unseen = {"wlan0"};
    m_sets.tellNow();
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_THAT(m_outOfSight, ElementsAre("fox", "owl"));
}

TEST_F(ServiceSetsTest, whatMayNotBeToldIsToldLater) {
    completeNow();
    m_mayTell = false;
    m_sets.add(ssh, "fox", {1, 0});
    m_scheduler.advance(1h);
    EXPECT_THAT(told(), IsEmpty());

    m_mayTell = true;
    m_sets.resume();
    m_scheduler.advance(0ms);
    EXPECT_THAT(told(), ElementsAre("fox@eth0"));
    m_sets.tellAgain();
    m_scheduler.advance(0ms);
    EXPECT_EQ(m_tellings, 3);
}

/// Whatever comes and goes in whatever order, what is told in the end is what a plain model holds.
TEST_F(ServiceSetsTest, randomComingAndGoingEndsInTheTrueSet) {
    std::mt19937 random(7);
    std::set<std::tuple<std::string, int, int>> model;
    completeNow();
    for (int step = 0; step < 5'000; ++step) {
        const auto name = "device " + std::to_string(random() % 8);
        const Place place{static_cast<int>(random() % 2) + 1, static_cast<int>(random() % 2)};
        if (random() % 2 == 0) {
            m_sets.add(ssh, name, place);
            model.emplace(name, place.interfaceIndex, place.protocol);
        } else {
            m_sets.remove(ssh, name, place);
            model.erase({name, place.interfaceIndex, place.protocol});
        }
        if (random() % 10 != 0)
            continue;
        m_scheduler.advance(200ms);
        std::set<std::string> expected;
        for (const auto& [itsName, index, protocol] : model)
            expected.insert(itsName + '@' + *m_interfaces[index]);
        ASSERT_THAT(told(), ::testing::ElementsAreArray(expected)) << "step " << step;
    }
}

} // namespace
} // namespace nightjar
