// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/QtMainThread.h"

#include "tests/support/EventLoop.h"

#include <QThread>

#include <gmock/gmock.h>

#include <array>
#include <memory>
#include <thread>
#include <vector>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

/// Takes time without giving the event loop back.
void work(std::chrono::microseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) {
    }
}

TEST(QtMainThread, jobsOfEveryThreadRunInTheirOrderOnTheMainThread) {
    constexpr int perThread = 20'000;
    constexpr std::size_t threads = 4;
    QtMainThread mainThread;
    std::array<std::vector<int>, threads> seen; // unguarded: only the main thread may touch it
    {
        std::vector<std::jthread> posters;
        for (std::size_t t = 0; t < threads; ++t) {
            posters.emplace_back([&, t] {
                for (int i = 0; i < perThread; ++i) {
                    mainThread.post(
                        [&seen, t, payload = std::make_unique<int>(i)] { seen[t].push_back(*payload); });
                }
            });
        }
        ASSERT_TRUE(runEventsUntil([&] {
            return std::ranges::all_of(seen, [](const auto& list) { return list.size() == perThread; });
        }));
    }
    for (const auto& list : seen)
        EXPECT_TRUE(std::ranges::is_sorted(list));
}

TEST(QtMainThread, aJobRunsLaterAndMayPostMore) {
    QtMainThread mainThread;
    std::vector<int> order;
    mainThread.post([&] {
        mainThread.post([&] { order.push_back(3); });
        order.push_back(1);
    });
    mainThread.post([&] { order.push_back(2); });
    EXPECT_TRUE(order.empty());

    ASSERT_TRUE(runEventsUntil([&] { return order.size() == 3; }));
    EXPECT_THAT(order, ElementsAre(1, 2, 3));
}

TEST(QtMainThread, aFloodOfJobsLeavesOtherEventsTheirTurn) {
    QtMainThread mainThread;
    bool stop = false;
    std::function<void()> again = [&] {
        if (!stop)
            mainThread.post(again);
    };
    again();
    std::size_t done = 0;
    constexpr std::size_t jobs = 2'000;
    for (std::size_t i = 0; i < jobs; ++i) {
        mainThread.post([&] {
            work(200us);
            ++done;
        });
    }
    std::size_t doneAtTimer = jobs;
    QTimer::singleShot(0, [&] { doneAtTimer = done; });

    ASSERT_TRUE(runEventsUntil([&] { return done == jobs; }));
    stop = true;
    EXPECT_LT(doneAtTimer, jobs / 2);
}

TEST(QtMainThread, aJobWithAnEventLoopOfItsOwnDoesNotHoldUpTheOthers) {
    QtMainThread mainThread;
    std::vector<int> order;
    mainThread.post([&] {
        order.push_back(1);
        EXPECT_TRUE(runEventsUntil([&] { return order.size() == 3; }));
        order.push_back(4);
    });
    mainThread.post([&] { order.push_back(2); });
    mainThread.post([&] { order.push_back(3); });

    ASSERT_TRUE(runEventsUntil([&] { return order.size() == 4; }));
    EXPECT_THAT(order, ElementsAre(1, 2, 3, 4));
}

TEST(QtMainThread, waitingJobsAreDestroyedWithoutBeingRun) {
    struct PostsWhenItGoes {
        QtMainThread& mainThread;
        ~PostsWhenItGoes() {
            mainThread.post([] { FAIL(); });
        }
    };
    auto alive = std::make_shared<int>(0);
    {
        QtMainThread mainThread;
        mainThread.post([alive] { FAIL(); });
        mainThread.post([last = std::make_unique<PostsWhenItGoes>(mainThread)] { FAIL(); });
    }
    EXPECT_EQ(alive.use_count(), 1);
}

} // namespace
} // namespace nightjar
