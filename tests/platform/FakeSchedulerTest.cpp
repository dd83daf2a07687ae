// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/simulated/FakeScheduler.h"

#include <gmock/gmock.h>

#include <string>

namespace nightjar {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::chrono_literals;

class FakeSchedulerTest : public ::testing::Test {
protected:
    /// A callback that notes its name and the seconds since the start.
    auto note(std::string name) {
        return [this, name = std::move(name)] {
            fired.push_back(name + "@" + std::to_string(static_cast<int>((scheduler.now() - start).count())));
        };
    }

    FakeScheduler scheduler;
    const Date start = scheduler.now();
    std::vector<std::string> fired;
};

TEST_F(FakeSchedulerTest, runsWhatFallsDueInItsOrderAndAtItsTime) {
    const auto late = scheduler.after(3s, note("late"));
    const auto tick = scheduler.every(2s, note("tick"));
    const auto early = scheduler.after(1s, note("early"));
    const auto together = scheduler.after(2s, note("together"));
    EXPECT_THAT(fired, IsEmpty());

    scheduler.advance(4s);

    EXPECT_THAT(fired, ElementsAre("early@1", "tick@2", "together@2", "late@3", "tick@4"));
    EXPECT_EQ(scheduler.armedTimers(), 1U);
}

TEST_F(FakeSchedulerTest, aTimerThatGoesIsDisarmedAlsoByItself) {
    auto gone = scheduler.after(1s, note("gone"));
    gone.cancel();
    Timer tick;
    tick = scheduler.every(1s, [&] {
        note("tick")();
        tick.cancel();
    });
    scheduler.advance(5s);

    EXPECT_THAT(fired, ElementsAre("tick@1"));
    EXPECT_EQ(scheduler.armedTimers(), 0U);
}

TEST_F(FakeSchedulerTest, whatIsArmedOnTheWayCountsFromThere) {
    Timer second;
    const auto first = scheduler.after(1s, [&] { second = scheduler.after(1s, note("second")); });
    Timer atOnce = scheduler.after(0s, note("at once"));
    EXPECT_THAT(fired, IsEmpty()) << "never inside the call that armed it";

    scheduler.advance(0s);
    EXPECT_THAT(fired, ElementsAre("at once@0"));
    scheduler.advance(2s);
    EXPECT_THAT(fired, ElementsAre("at once@0", "second@2"));
}

TEST_F(FakeSchedulerTest, aDateThatIsSetMovesNoTimer) {
    const auto timer = scheduler.after(1s, note("timer"));
    scheduler.setDate(start + Seconds(100));
    EXPECT_THAT(fired, IsEmpty());
    scheduler.advance(1s);
    EXPECT_THAT(fired, ElementsAre("timer@101"));
}

} // namespace
} // namespace nightjar
