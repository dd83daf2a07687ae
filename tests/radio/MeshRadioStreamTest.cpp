// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/radio/ProcessFacts.h"
#include "tests/radio/RadioFixture.h"

#include <unistd.h>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::StartsWith;

struct MeshRadioStream : RadioFixture {
    std::size_t floodLines() const {
        return static_cast<std::size_t>(
            std::ranges::count_if(story, [](const auto& text) { return text.starts_with("status flood "); }));
    }
    void expectFloodInOrder(std::size_t lines) {
        ASSERT_EQ(floodLines(), lines);
        const auto first = positionOf("status flood 0");
        for (std::size_t i = 0; i < lines; ++i)
            ASSERT_EQ(story[first + i], "status flood " + std::to_string(i));
    }
};

TEST_F(MeshRadioStream, eventsAndCompletionsKeepTheOrderInWhichTheBridgeWrote) {
    ASSERT_TRUE(connectsTo("good"));
    radio->sendText("hello", 42, 3,
                    [this](auto result) { story.push_back("sent " + std::to_string(*result)); });
    ASSERT_TRUE(tells("sent 101"));
    disconnect();
    ASSERT_TRUE(tells("disconnect done"));

    EXPECT_THAT(story, ElementsAre(StartsWith("status pid "), "status before the answer",
                                   "connected to /dev/cu.usbmodem1", "status after the answer",
                                   "status got hello for 42", "sent 101", "disconnect done"));
}

TEST_F(MeshRadioStream, linesMayComeInPieces) {
    ASSERT_TRUE(connectsTo("half-lines"));
    sendText("hello");
    EXPECT_TRUE(tells("hello sent 101"));
    EXPECT_TRUE(tells("status got hello"));
}

TEST_F(MeshRadioStream, unreadableLinesAreDroppedAndTheNextOneCounts) {
    ASSERT_TRUE(connectsTo("garbage"));
    EXPECT_TRUE(tells("status with carriage return"));
    EXPECT_EQ(story.size(), 5u) << ::testing::PrintToString(story);
}

TEST_F(MeshRadioStream, aFloodArrivesWholeAndInOrderThroughASmallInbox) {
    options.inboxHighBytes = 200000;
    options.inboxLowBytes = 50000;
    options.mainThreadSlice = 0us;
    createRadio();
    ASSERT_TRUE(connectsTo("flood"));
    sendText("hello");

    EXPECT_TRUE(tells("hello sent 101"));
    expectFloodInOrder(50000);
}

TEST_F(MeshRadioStream, aMainThreadThatStallsNeitherLosesLinesNorFailsRequests) {
    options.inboxHighBytes = 200000;
    options.inboxLowBytes = 50000;
    createRadio();
    ASSERT_TRUE(connectsTo("floods-on-send"));
    ASSERT_TRUE(tells("status after the answer"));
    sendText("hello");
    // Nothing runs on the main thread, so the flood fills the inbox and the answer waits behind it.
    ASSERT_TRUE(waitWithoutMainThread([&] { return mainThread.waitingJobs() > 0; }));
    ASSERT_TRUE(clock.waitUntilIdle());
    clock.advance(6s);

    EXPECT_TRUE(tells("hello sent 101")) << "the bridge answered in time";
    expectFloodInOrder(50000);
}

TEST_F(MeshRadioStream, aHugeLineIsHandledAndOneBeyondTheLimitIsPassedOver) {
    ASSERT_TRUE(connectsTo("huge-line"));
    ASSERT_TRUE(tells("status after the huge line"));
    EXPECT_EQ(timesTold("status " + std::string(200, 'x')), 1);

    options.longestLine = 1 << 20;
    createRadio();
    story.clear();
    ASSERT_TRUE(connectsTo("huge-line"));
    ASSERT_TRUE(tells("status after the huge line"));
    EXPECT_EQ(timesTold("status " + std::string(200, 'x')), 0);
}

TEST_F(MeshRadioStream, errorOutputOfAnyVolumeIsReadAway) {
    EXPECT_TRUE(connectsTo("errors-flood"));
}

TEST_F(MeshRadioStream, whatABridgeWroteBeforeItsExitArrivesBeforeTheNews) {
    ASSERT_TRUE(connectsTo("words-then-exit"));
    ASSERT_TRUE(tells("lost bridgeStopped"));

    expectFloodInOrder(1500);
    EXPECT_EQ(story.back(), "lost bridgeStopped");
}

TEST_F(MeshRadioStream, anAnswerFollowedByTheExitArrives) {
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(connectsTo("answers-then-exits"));
        sendText("hello");
        ASSERT_TRUE(tells("lost bridgeStopped"));
        ASSERT_EQ(timesTold("hello sent 101"), 1);
        ASSERT_LT(positionOf("hello sent 101"), positionOf("lost bridgeStopped"));
        story.clear();
    }
}

/// An inbox that is full after one read, and a main thread that does not come to empty it.
struct MeshRadioPaused : MeshRadioStream {
    MeshRadioPaused() {
        options.inboxHighBytes = 20000;
        options.inboxLowBytes = 5000;
        options.mainThreadSlice = 0us;
        createRadio();
    }
};

TEST_F(MeshRadioPaused, aBridgeThatHasExitedIsStillReadToItsEnd) {
    useBridge("words-then-exit");
    connect();
    ASSERT_TRUE(
        waitWithoutMainThread([&] { return mainThread.waitingJobs() > 0 && childProcesses().empty(); }));

    ASSERT_TRUE(tells("lost bridgeStopped"));
    expectFloodInOrder(1500);
}

TEST_F(MeshRadioPaused, aRequestThatMeetsAnEndNotYetSeenFailsWithThatEnd) {
    useBridge("words-then-closed-pipes");
    connect();
    ASSERT_TRUE(waitWithoutMainThread([&] { return mainThread.waitingJobs() > 0; }));
    ASSERT_EQ(childProcesses().size(), 1u);
    const auto output = "/proc/" + std::to_string(*childProcesses().begin()) + "/fd/1";
    ASSERT_TRUE(waitWithoutMainThread([&] { return ::access(output.c_str(), F_OK) != 0; }));
    sendText("hello");

    ASSERT_TRUE(tells("lost bridgeStopped"));
    EXPECT_EQ(timesTold("hello failed: bridgeStopped"), 1);
    expectFloodInOrder(1500);
}

} // namespace
} // namespace nightjar
