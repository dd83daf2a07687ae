// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/radio/ProcessFacts.h"
#include "tests/radio/RadioFixture.h"

#include <random>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::Each;
using ::testing::ElementsAre;

struct MeshRadioOverlap : RadioFixture {
    void connectAs(const std::string& name) {
        radio->connect(
            port,
            {.onLost = [this, name](const auto& error) { story.push_back(name + " lost " + toText(error)); }},
            [this, name](auto result) {
                story.push_back(name + (result ? " connected" : " " + toText(result.error())));
            });
    }
};

TEST_F(MeshRadioOverlap, aNewConnectionTakesThePlaceOfTheRunningOne) {
    ASSERT_TRUE(connectsTo("silent-on-send"));
    const pid_t first = numberTold("pid");
    sendText("hello");
    ASSERT_TRUE(clock.waitUntilArmed(5s));
    story.clear();
    ASSERT_TRUE(connectsTo("good"));

    EXPECT_NE(numberTold("pid"), first);
    EXPECT_EQ(timesTold("hello failed: cancelled"), 1);
    EXPECT_LT(positionOf("hello failed: cancelled"), positionOf("status before the answer"));
    EXPECT_TRUE(waitFor([] { return childProcesses().size() == 1; }));
}

TEST_F(MeshRadioOverlap, onlyTheLatestOfManyConnectsIsCarriedOut) {
    useBridge("good");
    for (const std::string name : {"a", "b", "c"})
        connectAs(name);
    ASSERT_TRUE(tells("c connected"));

    EXPECT_THAT(story, ElementsAre("a cancelled", "b cancelled", "c connected"));
    EXPECT_TRUE(waitFor([] { return childProcesses().size() == 1; }));
}

TEST_F(MeshRadioOverlap, anAttemptThatWaitsIsCancelledByTheNextAndNeverStopsIt) {
    useBridge("silent-on-connect+silent-on-disconnect");
    connectAs("a");
    ASSERT_TRUE(clock.waitUntilArmed(15s));
    useBridge("good");
    connectAs("b");
    ASSERT_TRUE(tells("a cancelled"));
    ASSERT_TRUE(clock.waitUntilArmed(2s));
    clock.advance(2s);
    ASSERT_TRUE(tells("b connected"));
    clock.advance(20s);

    ASSERT_TRUE(clock.waitUntilIdle());
    sendText("hello");
    EXPECT_TRUE(tells("hello sent 101"))
        << "the first attempt's fifteen seconds are nobody's business any more";
    EXPECT_THAT(story, ElementsAre("a cancelled", "b connected", "hello sent 101"));
}

TEST_F(MeshRadioOverlap, aSuccessThatMeetsALaterDisconnectOnItsWayIsCancelled) {
    useBridge("good");
    connectAs("a");
    // The answer lies in the inbox when the user changes his mind.
    ASSERT_TRUE(waitWithoutMainThread([&] { return mainThread.waitingJobs() > 0; }));
    ASSERT_TRUE(clock.waitUntilIdle());
    disconnect();
    ASSERT_TRUE(tells("disconnect done"));

    EXPECT_THAT(story, ElementsAre("a cancelled", "disconnect done"));
    EXPECT_TRUE(waitFor([] { return childProcesses().empty(); }));
}

TEST_F(MeshRadioOverlap, theLossOfAConnectionThatWasReplacedMeanwhileIsNotTold) {
    useBridge("exits-on-send");
    connectAs("a");
    ASSERT_TRUE(tells("a connected"));
    sendText("hello");
    ASSERT_TRUE(waitWithoutMainThread([] { return childProcesses().empty(); }));
    ASSERT_TRUE(clock.waitUntilIdle());
    useBridge("good");
    connectAs("b");
    ASSERT_TRUE(tells("b connected"));

    EXPECT_THAT(story, ElementsAre("a connected", "hello failed: bridgeStopped", "b connected"));
}

TEST_F(MeshRadioOverlap, disconnectsThatOverlapEndTogetherAndWithoutABridgeAtOnce) {
    disconnect();
    ASSERT_TRUE(tells("disconnect done"));
    ASSERT_TRUE(connectsTo("silent-on-disconnect"));
    story.clear();
    disconnect();
    disconnect();
    ASSERT_TRUE(clock.waitUntilArmed(2s));
    clock.advance(2s);

    ASSERT_TRUE(waitFor([&] { return story.size() == 2; }));
    EXPECT_THAT(story, Each("disconnect done"));
}

/// Any mixture of actions and of bridges that behave and misbehave.
struct MeshRadioBurst : MeshRadioOverlap, ::testing::WithParamInterface<unsigned> {
    void act(unsigned choice) {
        const auto call = calls.size();
        calls.push_back(0);
        const auto complete = [this, call](auto&&...) { ++calls[call]; };
        static const std::vector<std::string> bridges{"good",
                                                      "silent-on-connect+silent-on-disconnect",
                                                      "error-on-connect",
                                                      "answers-then-exits",
                                                      "exits-at-once",
                                                      "ignores-end+silent-on-send",
                                                      "closes-output",
                                                      "version-2-on-send",
                                                      "exits-on-connect"};
        if (choice % 4 < 2) {
            useBridge(bridges[choice / 4 % bridges.size()]);
            radio->connect(port, {}, complete);
        } else if (choice % 4 == 2) {
            radio->sendText("hello", {}, 0, complete);
        } else {
            radio->disconnect(complete);
        }
        if (choice % 3 == 0)
            mainThread.runPending();
        if (choice % 11 == 0)
            clock.advance(700ms);
    }
    bool allCompleted() const {
        return std::ranges::none_of(calls, [](int count) { return count == 0; });
    }

    std::vector<int> calls; ///< how often each was completed
};

TEST_P(MeshRadioBurst, completesEveryCallOnceAndLeavesWhatTheLastActionSays) {
    const auto descriptors = openDescriptors();
    const auto seed = GetParam() ? GetParam() : std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    RecordProperty("seed", std::to_string(seed));
    std::mt19937 random(seed);
    for (int i = 0; i < 80; ++i)
        act(static_cast<unsigned>(random()));

    disconnect();
    ASSERT_TRUE(passTimeUntil([&] { return allCompleted() && timesTold("disconnect done") == 1; }));
    ASSERT_TRUE(passTimeUntil([] { return childProcesses().empty(); }));
    EXPECT_EQ(openDescriptors(), descriptors);

    for (int i = 0; i < 10; ++i)
        act(static_cast<unsigned>(random()));
    useBridge("good");
    connectAs("last");
    ASSERT_TRUE(passTimeUntil([&] { return allCompleted() && timesTold("last connected") == 1; }));
    ASSERT_TRUE(passTimeUntil([] { return childProcesses().size() == 1; }));
    sendText("hello");
    EXPECT_TRUE(tells("hello sent 101"));
    EXPECT_THAT(calls, Each(1));
}

INSTANTIATE_TEST_SUITE_P(Seeds, MeshRadioBurst, ::testing::Values(1u, 2u, 3u, 0u));

} // namespace
} // namespace nightjar
