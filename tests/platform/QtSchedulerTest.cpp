// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/QtScheduler.h"

#include "tests/support/EventLoop.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

TEST(QtScheduler, timersFireInTheOrderOfTheirDelaysAndNeverEarly) {
    QtScheduler scheduler;
    std::vector<int> fired;
    std::vector<bool> early;
    std::vector<Timer> timers;
    const auto start = std::chrono::steady_clock::now();
    for (const int delay : {60, 0, 20, -5}) {
        timers.push_back(scheduler.after(std::chrono::milliseconds(delay), [&, delay] {
            fired.push_back(delay);
            early.push_back(std::chrono::steady_clock::now() - start < std::chrono::milliseconds(delay));
        }));
    }
    EXPECT_TRUE(fired.empty());

    ASSERT_TRUE(runEventsUntil([&] { return fired.size() == 4; }));
    EXPECT_THAT(fired, ElementsAre(0, -5, 20, 60));
    EXPECT_THAT(early, ElementsAre(false, false, false, false));
}

TEST(QtScheduler, aRepeatedTimerMayCancelItself) {
    QtScheduler scheduler;
    int runs = 0;
    Timer timer;
    const auto guard = std::make_shared<int>(0);
    timer = scheduler.every(1ms, [&, guard] {
        if (++runs < 3)
            return;
        timer.cancel();
        EXPECT_GT(guard.use_count(), 1) << "the callback is whole until it returns";
    });
    bool later = false;
    const Timer after = scheduler.after(30ms, [&] { later = true; });

    ASSERT_TRUE(runEventsUntil([&] { return later; }));
    EXPECT_EQ(runs, 3);
    EXPECT_EQ(guard.use_count(), 1) << "and is destroyed after that";
}

TEST(QtScheduler, aTimerMayCancelAnotherThatIsDue) {
    QtScheduler scheduler;
    std::string fired;
    Timer second;
    Timer first = scheduler.after(1ms, [&] {
        fired += "first ";
        second.cancel();
    });
    second = scheduler.after(1ms, [&] { fired += "second "; });
    const Timer last = scheduler.after(20ms, [&] { fired += "last"; });

    ASSERT_TRUE(runEventsUntil([&] { return fired.ends_with("last"); }));
    EXPECT_EQ(fired, "first last");
}

TEST(QtScheduler, aTimerThatHasFiredDoesNotDisarmItsSuccessor) {
    QtScheduler scheduler;
    int fired = 0;
    Timer first = scheduler.after(0ms, [&] { ++fired; });
    ASSERT_TRUE(runEventsUntil([&] { return fired == 1; }));

    // The event loop gives the new timer the number of the first one.
    Timer second = scheduler.after(0ms, [&] { ++fired; });
    first.cancel();

    EXPECT_TRUE(runEventsUntil([&] { return fired == 2; }));
}

TEST(QtScheduler, timersMayOutliveTheScheduler) {
    Timer timer;
    bool fired = false;
    {
        QtScheduler scheduler;
        timer = scheduler.after(0ms, [&] { fired = true; });
    }
    bool later = false;
    QTimer::singleShot(10, [&] { later = true; });
    ASSERT_TRUE(runEventsUntil([&] { return later; }));
    EXPECT_FALSE(fired);
    timer.cancel();
}

TEST(QtScheduler, theDateIsToday) {
    const auto seconds = unixSeconds(QtScheduler().now());
    EXPECT_NEAR(seconds, static_cast<double>(::time(nullptr)), 5);
}

} // namespace
} // namespace nightjar
