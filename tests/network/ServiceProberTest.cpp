// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/ServiceProber.h"

#include "platform/simulated/FakeScheduler.h"

#include <gmock/gmock.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Answer = ServiceProber::Answer;
using Source = ServiceProber::Source;

ProbedService service(const std::string& name, const std::string& type = "_ssh._tcp", int interface = 1) {
    return {.name = name, .type = type, .interfaceIndex = interface};
}

/// A network whose devices answer after 50 ms, or not at all, which the daemon tells after 5 s.
class ServiceProberTest : public ::testing::Test {
protected:
    ServiceProberTest() {
        m_prober.setImportant([](const ProbedService&) { return true; });
    }

    void ask(const ProbedService& instance, std::function<void(Answer)> answered) {
        EXPECT_TRUE(m_underWay.insert(instance).second) << "asked twice at once";
        m_mostUnderWay = std::max(m_mostUnderWay, m_underWay.size());
        m_asked.push_back(instance.name);
        const bool isSilent =
            m_isAllSilent || m_silent.contains(instance.name) ||
            m_silent.contains(instance.name + '@' + std::to_string(instance.interfaceIndex));
        const auto remembered = m_remembered.find(instance.name);
        if (remembered != m_remembered.end() && m_scheduler.steadyNow() < remembered->second) {
            m_timers.push_back(m_scheduler.after(1ms, [this, instance, answered] {
                m_underWay.erase(instance);
                answered(Answer::thereFromMemory);
            }));
            return;
        }
        const auto answer = isSilent ? Answer::timeout : m_answer;
        m_timers.push_back(m_scheduler.after(isSilent ? m_timeout : 50ms, [this, instance, answer, answered] {
            m_underWay.erase(instance);
            answered(answer);
        }));
    }

    bool isThere(const std::string& name) { return m_prober.isThere(service(name)).value(); }
    void addHeard(const std::vector<std::string>& names) {
        for (const auto& name : names)
            m_prober.add(service(name), Source::heard);
    }
    /// How long until it is no longer there, or is there again.
    std::chrono::seconds timeUntilChange(const std::string& name, std::chrono::seconds limit = 20min) {
        const bool before = isThere(name);
        auto waited = 0s;
        for (; isThere(name) == before && waited < limit; waited += 1s)
            m_scheduler.advance(1s);
        return waited;
    }

    FakeScheduler m_scheduler;
    std::set<std::string> m_silent;                 ///< "name", or "name@index"
    std::map<std::string, SteadyTime> m_remembered; ///< until when, by name
    bool m_isAllSilent = false;
    Answer m_answer = Answer::there;
    std::chrono::milliseconds m_timeout = 5s;
    std::set<ProbedService> m_underWay;
    std::size_t m_mostUnderWay = 0;
    std::vector<std::string> m_asked;
    std::vector<std::string> m_changes;
    std::vector<Timer> m_timers;
    int m_settled = 0;
    int m_doubts = 0;
    ServiceProber m_prober{
        m_scheduler,
        ProberSettings{},
        [this](const ProbedService& instance, auto answered) { ask(instance, std::move(answered)); },
        {.changed = [this](const ProbedService& instance) { m_changes.push_back(instance.name); },
         .settled = [this] { ++m_settled; },
         .doubtChanged = [this] { m_doubts += m_prober.isInDoubt() ? 1 : 0; }}};
};

TEST_F(ServiceProberTest, deviceWithoutPowerIsGoneWithinFiveMinutesAndBackWithinThirtySeconds) {
    addHeard({"printer", "lamp", "shelf"});
    m_scheduler.advance(10min);
    EXPECT_THAT(m_changes, IsEmpty());

    m_silent = {"printer"};
    EXPECT_LE(timeUntilChange("printer"), 240s);
    EXPECT_TRUE(isThere("lamp"));
    m_scheduler.advance(1h);
    EXPECT_THAT(m_changes, ElementsAre("printer"));

    m_silent.clear();
    EXPECT_LE(timeUntilChange("printer"), 30s);
    EXPECT_THAT(m_changes, ElementsAre("printer", "printer"));
}

/// Among devices that are remembered themselves some doubt comes on top.
TEST_F(ServiceProberTest, theMemoryOfTheDaemonHidesADeathForSixMinutesAtMost) {
    addHeard({"printer", "lamp", "shelf"});
    auto longest = 0s;
    for (int round = 0; round < 50; ++round) {
        m_scheduler.advance(20min + 17s * round);
        m_silent = {"printer"};
        // Somebody else has just asked for it.
        m_remembered = {{"printer", m_scheduler.steadyNow() + 120s}};
        longest = std::max(longest, timeUntilChange("printer"));
        m_silent.clear();
        EXPECT_LE(timeUntilChange("printer"), 30s);
    }
    EXPECT_LE(longest, 6min);
}

TEST_F(ServiceProberTest, threeTimeoutsAndAnAnswerAreNoLoss) {
    addHeard({"printer", "lamp"});
    m_scheduler.advance(2min);
    for (int round = 0; round < 50; ++round) {
        m_silent = {"printer"};
        while (std::ranges::count(m_asked, "printer") < 3)
            m_scheduler.advance(100ms);
        m_asked.clear();
        m_silent.clear();
        m_scheduler.advance(2min);
    }

    EXPECT_THAT(m_changes, IsEmpty());
}

TEST_F(ServiceProberTest, whatIsNoTimeoutOfTheDaemonIsNoEvidence) {
    struct Case {
        const char* what;
        Answer answer;
        std::chrono::milliseconds timeout;
        bool isSilent;
    };
    for (const auto& [what, answer, timeout, isSilent] :
         {Case{"an error", Answer::error, 5s, false},
          Case{"a time-out at once", Answer::there, 100ms, true}}) {
        SCOPED_TRACE(what);
        m_prober.clear();
        addHeard({"printer", "lamp"});
        m_answer = answer;
        m_timeout = timeout;
        m_silent = isSilent ? std::set<std::string>{"printer"} : std::set<std::string>{};
        m_scheduler.advance(1h);

        EXPECT_THAT(m_changes, IsEmpty());
    }
}

TEST_F(ServiceProberTest, whatTheDaemonRemembersIsThereAfterItsFirstAnswer) {
    m_silent = {"dead"};
    for (const auto* name : {"alive", "dead"})
        m_prober.add(service(name), Source::remembered);
    m_prober.add(service("known"), Source::knownBefore);
    EXPECT_TRUE(isThere("known"));
    EXPECT_FALSE(isThere("alive"));

    m_scheduler.advance(100ms);
    EXPECT_TRUE(isThere("alive"));
    EXPECT_EQ(m_settled, 0);
    m_scheduler.advance(10min);
    EXPECT_EQ(m_settled, 1);
    EXPECT_THAT(m_changes, ElementsAre("alive"));

    m_prober.add(service("dead"), Source::heard);
    EXPECT_TRUE(isThere("dead"));
}

TEST_F(ServiceProberTest, atMostSixteenAreAskedAtOnceTheImportantOnesFirst) {
    m_prober.setImportant([](const ProbedService& instance) { return instance.name == "wanted"; });
    m_isAllSilent = true;
    for (int i = 0; i < 100; ++i)
        m_prober.add(service("device " + std::to_string(i)), Source::remembered);
    m_prober.add(service("wanted"), Source::remembered);
    m_scheduler.advance(1ms);

    EXPECT_EQ(m_asked.front(), "wanted");
    m_scheduler.advance(5min);
    EXPECT_EQ(m_mostUnderWay, 16u);
}

TEST_F(ServiceProberTest, silenceOfAllIsDoubtedForAWhileAndThenBelieved) {
    addHeard({"printer", "lamp", "shelf"});
    m_scheduler.advance(10min);
    m_isAllSilent = true;
    while (!m_prober.isInDoubt())
        m_scheduler.advance(1s);
    m_scheduler.advance(45s);
    EXPECT_THAT(m_changes, IsEmpty());
    m_scheduler.advance(10s);
    EXPECT_FALSE(isThere("printer") && isThere("lamp") && isThere("shelf"));
    m_scheduler.advance(2min);

    EXPECT_FALSE(isThere("printer") || isThere("lamp") || isThere("shelf"));
    EXPECT_FALSE(m_prober.isInDoubt());
    EXPECT_EQ(m_doubts, 1);
    m_isAllSilent = false;
    EXPECT_LE(timeUntilChange("lamp"), 30s);
}

TEST_F(ServiceProberTest, afterADisturbanceOnlyTheOneThatStaysSilentIsGone) {
    addHeard({"printer", "lamp", "shelf"});
    m_scheduler.advance(10min);
    m_isAllSilent = true;
    while (!m_prober.isInDoubt())
        m_scheduler.advance(1s);
    m_scheduler.advance(30s);
    m_isAllSilent = false;
    m_silent = {"printer"};
    m_scheduler.advance(1min);

    EXPECT_THAT(m_changes, ElementsAre("printer"));
    EXPECT_FALSE(m_prober.isInDoubt());
}

TEST_F(ServiceProberTest, theOnlyDeviceIsNotDoubted) {
    m_prober.add(service("printer", "_ipp._tcp"), Source::heard);
    m_prober.add(service("printer", "_http._tcp"), Source::heard);
    m_scheduler.advance(10min);
    m_isAllSilent = true;
    m_scheduler.advance(3min);

    EXPECT_FALSE(m_prober.isThere(service("printer", "_ipp._tcp")).value());
    EXPECT_EQ(m_doubts, 0);
}

TEST_F(ServiceProberTest, eachInterfaceIsLookedAtByItself) {
    for (const int interface : {1, 2})
        for (const auto* name : {"printer", "lamp", "shelf"})
            m_prober.add(service(name, "_ssh._tcp", interface), Source::heard);
    m_scheduler.advance(10min);
    m_silent = {"printer@2"};
    m_scheduler.advance(240s);
    EXPECT_FALSE(m_prober.isThere(service("printer", "_ssh._tcp", 2)).value());
    EXPECT_TRUE(isThere("printer"));

    m_silent = {"printer@1", "lamp@1", "shelf@1"};
    m_doubts = 0;
    m_scheduler.advance(5min);
    EXPECT_GE(m_doubts, 1) << "what is heard on one interface says nothing of the other";
    EXPECT_TRUE(m_prober.isThere(service("lamp", "_ssh._tcp", 2)).value());
}

TEST_F(ServiceProberTest, oneThatBecomesImportantIsAskedSoonAndOftenerThanTheOthers) {
    m_prober.setImportant({});
    addHeard({"printer", "lamp"});
    m_scheduler.advance(10min);
    m_asked.clear();
    m_scheduler.advance(1h);
    EXPECT_LE(std::ranges::count(m_asked, "printer"), 17);

    m_silent = {"printer"};
    m_prober.setImportant([](const ProbedService& asked) { return asked.name == "printer"; });
    EXPECT_LE(timeUntilChange("printer"), 90s);
    m_silent.clear();
    EXPECT_LE(timeUntilChange("printer"), 30s);
}

TEST_F(ServiceProberTest, aDeviceThatDiesAmongOthersIsNotDoubtedForLong) {
    addHeard({"printer", "lamp", "shelf"});
    m_prober.add(service("printer", "_ipp._tcp"), Source::heard);
    m_scheduler.advance(30min);
    for (int round = 0; round < 20; ++round) {
        m_silent.clear();
        m_scheduler.advance(15min + 7s * round);
        m_silent = {"printer"};
        EXPECT_LE(timeUntilChange("printer"), 240s) << "with two to bear witness";
    }

    m_prober.setImportant([](const ProbedService& asked) { return asked.name == "printer"; });
    for (int i = 0; i < 20; ++i)
        addHeard({"other " + std::to_string(i)});
    m_doubts = 0;
    m_silent.clear();
    m_scheduler.advance(15min);
    m_silent = {"printer"};
    EXPECT_LE(timeUntilChange("printer"), 210s) << "those that matter less bear witness";
    EXPECT_EQ(m_doubts, 0);
}

TEST_F(ServiceProberTest, silenceWithoutALinkOfOurOwnSaysNothing) {
    addHeard({"printer", "lamp"});
    m_scheduler.advance(10min);
    m_isAllSilent = true;
    while (!m_prober.isInDoubt())
        m_scheduler.advance(1s);
    m_prober.setUsable(1, false);
    EXPECT_FALSE(m_prober.isInDoubt());
    m_scheduler.advance(1h);
    m_prober.setUsable(1, true);
    m_scheduler.advance(25s);
    m_isAllSilent = false;
    m_scheduler.advance(10min);
    EXPECT_THAT(m_changes, IsEmpty());

    m_silent = {"lamp"};
    EXPECT_LE(timeUntilChange("lamp"), 3min);
}

TEST_F(ServiceProberTest, timeoutsAroundASleepAreNoEvidence) {
    addHeard({"printer", "lamp"});
    m_scheduler.advance(10min);
    m_silent = {"printer"};
    m_asked.clear();
    while (std::ranges::count(m_asked, "printer") < 3)
        m_scheduler.advance(100ms);
    // Steady time stood still meanwhile; the third question ends after it.
    m_scheduler.setDate(m_scheduler.now() + Seconds(3'600));
    m_scheduler.advance(29s);
    m_silent.clear();
    m_scheduler.advance(5min);

    EXPECT_THAT(m_changes, IsEmpty());
}

TEST_F(ServiceProberTest, answersForWhatWasRemovedMeanwhileDoNotCount) {
    m_prober.add(service("printer"), Source::remembered);
    m_scheduler.advance(10ms);
    m_prober.remove(service("printer"));
    m_underWay.clear();
    m_silent = {"printer"};
    m_prober.add(service("printer"), Source::remembered);
    m_scheduler.advance(1s);
    EXPECT_FALSE(isThere("printer"));

    m_prober.clear();
    m_underWay.clear();
    m_silent.clear();
    m_prober.add(service("printer"), Source::remembered);
    m_scheduler.advance(10s);
    EXPECT_TRUE(isThere("printer"));
    EXPECT_FALSE(m_prober.isUnsettled());
}

TEST_F(ServiceProberTest, manyDevicesAreAllAskedInEachPeriod) {
    for (int i = 0; i < 5'000; ++i)
        m_prober.add(service("device " + std::to_string(i)), Source::heard);
    m_scheduler.advance(160s);
    m_asked.clear();
    m_scheduler.advance(160s);

    EXPECT_EQ(std::set(m_asked.begin(), m_asked.end()).size(), 5'000u);
    EXPECT_THAT(m_changes, IsEmpty());
}

} // namespace
} // namespace nightjar
