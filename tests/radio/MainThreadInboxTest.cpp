// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "radio/MainThreadInbox.h"

#include "platform/simulated/FakePollClock.h"
#include "platform/simulated/ManualMainThread.h"

#include <gmock/gmock.h>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

struct MainThreadInboxTest : ::testing::Test {
    void push(std::vector<int> numbers, std::chrono::milliseconds work = 0ms, std::size_t bytes = 10) {
        std::vector<MainThreadInbox::Job> jobs;
        for (const int number : numbers) {
            jobs.push_back({[this, number, work] {
                                done.push_back(number);
                                clock.advance(work);
                            },
                            bytes});
        }
        inbox->push(jobs);
        EXPECT_TRUE(jobs.empty());
    }

    FakePollClock clock;
    ManualMainThread mainThread;
    MeshRadioOptions options{.inboxHighBytes = 100, .inboxLowBytes = 40};
    int roomTold = 0;
    std::vector<int> done;
    std::shared_ptr<MainThreadInbox> inbox =
        std::make_shared<MainThreadInbox>(mainThread, clock, options, [this] { ++roomTold; });
};

TEST_F(MainThreadInboxTest, runsEverythingInOrderForOneMessage) {
    push({1, 2});
    push({3});
    EXPECT_EQ(mainThread.waitingJobs(), 1u);
    mainThread.runPending();
    push({4});
    mainThread.runPending();

    EXPECT_THAT(done, ElementsAre(1, 2, 3, 4));
}

TEST_F(MainThreadInboxTest, letsOtherWorkComeInBetween) {
    push({1, 2, 3}, 2ms);
    mainThread.post([this] { done.push_back(100); });
    mainThread.runPending();

    EXPECT_THAT(done, ElementsAre(1, 2, 100, 3));
}

TEST_F(MainThreadInboxTest, isFullFromTheHighMarkUntilTheLowMark) {
    push({1, 2, 3, 4, 5}, 4ms);
    EXPECT_FALSE(inbox->isFull());
    push({6, 7, 8, 9, 10}, 4ms);
    EXPECT_TRUE(inbox->isFull());

    ASSERT_TRUE(mainThread.runUntil([&] { return done.size() == 6; }));
    EXPECT_TRUE(inbox->isFull()) << "50 bytes wait, which is more than the low mark";
    EXPECT_EQ(roomTold, 0);
    mainThread.runPending();
    EXPECT_FALSE(inbox->isFull());
    EXPECT_EQ(roomTold, 1);
}

TEST_F(MainThreadInboxTest, aJobMayEndIt) {
    const auto held = std::make_shared<int>(0);
    std::vector<MainThreadInbox::Job> jobs;
    jobs.push_back({[this] {
                        done.push_back(1);
                        inbox->close();
                        inbox.reset();
                    },
                    0});
    jobs.push_back({[this, held] { done.push_back(2); }, 0});
    inbox->push(jobs);
    mainThread.runPending();

    EXPECT_THAT(done, ElementsAre(1));
    EXPECT_EQ(held.use_count(), 1) << "what was not run is destroyed at once";
}

} // namespace
} // namespace nightjar
