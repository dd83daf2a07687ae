// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/radio/ProcessFacts.h"
#include "tests/radio/RadioFixture.h"

#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nightjar {
namespace {

using namespace std::chrono_literals;

struct MeshRadioEnding : RadioFixture {};

TEST_F(MeshRadioEnding, anExitThatNobodyAskedForFailsWhatWaitsAndIsToldOnce) {
    ASSERT_TRUE(connectsTo("exits-on-send"));
    sendText("one");
    ASSERT_TRUE(tells("lost bridgeStopped"));

    EXPECT_EQ(timesTold("one failed: bridgeStopped"), 1);
    EXPECT_EQ(timesTold("status got one"), 1);
    sendText("two");
    EXPECT_TRUE(tells("two failed: bridgeStopped"));
    EXPECT_EQ(timesTold("lost bridgeStopped"), 1);
    EXPECT_TRUE(waitFor([] { return childProcesses().empty(); }));
}

TEST_F(MeshRadioEnding, aBridgeThatIsKilledIsLost) {
    ASSERT_TRUE(connectsTo("good"));
    ::kill(numberTold("pid"), SIGKILL);
    EXPECT_TRUE(tells("lost bridgeStopped"));
}

TEST_F(MeshRadioEnding, anIncompatibleLineEndsTheSession) {
    ASSERT_TRUE(connectsTo("version-2-on-send"));
    sendText("one");
    const std::string error = "bridge(Halvard Meshtastic Bridge uses an incompatible protocol version.)";
    ASSERT_TRUE(tells("lost " + error));

    EXPECT_EQ(timesTold("one failed: " + error), 1);
    EXPECT_TRUE(waitFor([] { return childProcesses().empty(); }));
}

TEST_F(MeshRadioEnding, aBridgeThatClosesItsOutputIsLostAndEnded) {
    ASSERT_TRUE(connectsTo("closes-output"));
    EXPECT_TRUE(tells("lost bridgeStopped"));
    EXPECT_TRUE(waitFor([] { return childProcesses().empty(); }));
}

TEST_F(MeshRadioEnding, aProcessThatKeepsThePipesOpenHidesNoExit) {
    for (const std::string behaviours : {"grandchild", "grandchild+chatty-grandchild"}) {
        ASSERT_TRUE(connectsTo(behaviours));
        ASSERT_TRUE(waitFor([&] { return numberTold("grandchild") > 0; }));
        const pid_t grandchild = numberTold("grandchild");
        ::kill(numberTold("pid"), SIGKILL);
        EXPECT_TRUE(tells("lost bridgeStopped")) << behaviours;
        ::kill(grandchild, SIGKILL);
        story.clear();
    }
}

TEST_F(MeshRadioEnding, aSilentBridgeHasTwoSecondsToDisconnect) {
    ASSERT_TRUE(connectsTo("silent-on-disconnect+silent-on-send"));
    sendText("hello");
    ASSERT_TRUE(clock.waitUntilArmed(5s));
    disconnect();
    ASSERT_TRUE(clock.waitUntilArmed(2s));
    EXPECT_EQ(timesTold("disconnect done"), 0);
    clock.advance(2s);

    ASSERT_TRUE(tells("disconnect done"));
    EXPECT_EQ(timesTold("hello failed: cancelled"), 1);
    EXPECT_EQ(timesTold("lost bridgeStopped"), 0);
    EXPECT_TRUE(waitFor([] { return childProcesses().empty(); }));
}

TEST_F(MeshRadioEnding, aBridgeThatIgnoresThePoliteEndIsForced) {
    ASSERT_TRUE(connectsTo("ignores-end"));
    disconnect();
    ASSERT_TRUE(tells("disconnect done"));
    ASSERT_TRUE(clock.waitUntilArmed(options.endingGrace));
    const auto old = childProcesses();
    EXPECT_EQ(old.size(), 1u);
    useBridge("good");
    story.clear();
    connect();
    ASSERT_TRUE(clock.waitUntilArmed(options.endingGrace));
    EXPECT_EQ(childProcesses(), old) << "two bridges would fight for one radio";

    clock.advance(options.endingGrace);
    EXPECT_TRUE(tells("connected to /dev/cu.usbmodem1"));
    EXPECT_EQ(childProcesses().size(), 1u);
    EXPECT_NE(childProcesses(), old);
}

TEST_F(MeshRadioEnding, theDestructorEndsTheBridgeAndDropsWhatWaits) {
    const auto held = std::make_shared<int>(0);
    ASSERT_TRUE(connectsTo("ignores-end+silent-on-send"));
    radio->sendText("hello", {}, 0, [this, held](auto) { story.emplace_back("completed"); });
    ASSERT_TRUE(clock.waitUntilArmed(5s));
    EXPECT_EQ(childProcesses().size(), 1u);

    const auto start = std::chrono::steady_clock::now();
    radio.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    EXPECT_TRUE(childProcesses().empty());
    mainThread.runPending();
    EXPECT_EQ(timesTold("completed"), 0);
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(MeshRadioEnding, theDestructorEndsABridgeThatIsOnItsWayOutAlready) {
    ASSERT_TRUE(connectsTo("ignores-end"));
    disconnect();
    ASSERT_TRUE(tells("disconnect done"));
    connect();
    ASSERT_TRUE(clock.waitUntilArmed(options.endingGrace));

    radio.reset();
    EXPECT_TRUE(childProcesses().empty());
}

TEST_F(MeshRadioEnding, theRadioMayBeDestroyedByWhatItTells) {
    useBridge("flood");
    radio->connect(port,
                   {.onEvent =
                        [this](const auto&) {
                            story.emplace_back("event");
                            radio.reset();
                        }},
                   [this](auto) { story.emplace_back("completed"); });
    ASSERT_TRUE(tells("event"));
    mainThread.runPending();

    EXPECT_EQ(story.size(), 1u);
    EXPECT_TRUE(childProcesses().empty());
}

TEST_F(MeshRadioEnding, aStartedBridgeFindsOnlyItsStreamsAndDefaultSignals) {
    MeshRadio other(host, mainThread, clock, options);
    useBridge("good");
    other.connect(port, {}, [this](auto) { story.emplace_back("other connected"); });
    ASSERT_TRUE(tells("other connected"));
    const int leak = ::open("/dev/null", O_RDONLY);
    ::signal(SIGPIPE, SIG_IGN);

    EXPECT_TRUE(connectsTo("surroundings"));
    EXPECT_EQ(timesTold("status descriptors 0 1 2"), 1) << ::testing::PrintToString(story);
    ::signal(SIGPIPE, SIG_DFL);
    ::close(leak);
}

TEST_F(MeshRadioEnding, manyConnectionsLeaveNoDescriptorAndNoChild) {
    const auto before = openDescriptors();
    for (const std::string behaviours :
         {"good", "exits-on-send", "closes-output", "error-on-connect", "good"}) {
        useBridge(behaviours);
        connect();
        ASSERT_TRUE(waitFor([&] { return story.size() >= 3; }));
        sendText("hello");
        disconnect();
        ASSERT_TRUE(tells("disconnect done"));
        story.clear();
    }
    EXPECT_TRUE(waitFor([] { return childProcesses().empty(); }));
    EXPECT_TRUE(waitFor([&] { return openDescriptors() == before; }))
        << openDescriptors() << " after " << before;
    EXPECT_TRUE(clock.waitUntilIdle()) << "nothing to wait for, nothing to wake up for";
}

TEST_F(MeshRadioEnding, bridgesEndWhenTheProgramIsKilled) {
    radio.reset();
    std::array<int, 2> report{};
    ASSERT_EQ(::pipe(report.data()), 0);
    const pid_t program = ::fork();
    ASSERT_GE(program, 0);
    if (program == 0) {
        // Two links in one process: neither bridge may hold the other's input open.
        createRadio();
        MeshRadio other(host, mainThread, clock, options);
        std::array<pid_t, 2> bridges{};
        const bool first = connectsTo("good");
        bridges[0] = numberTold("pid");
        other.connect(port, listener(), [this](auto) { story.emplace_back("other connected"); });
        const bool second = tells("other connected");
        bridges[1] = numberTold("pid");
        if (!first || !second)
            ::_exit(1);
        [[maybe_unused]] const auto count = ::write(report[1], bridges.data(), sizeof bridges);
        for (;;)
            ::pause();
    }
    ::close(report[1]);
    std::array<pid_t, 2> bridges{};
    const auto count = ::read(report[0], bridges.data(), sizeof bridges);
    ::kill(program, SIGKILL);
    ::waitpid(program, nullptr, 0);
    ::close(report[0]);

    ASSERT_EQ(count, static_cast<ssize_t>(sizeof bridges));
    ASSERT_NE(bridges[0], bridges[1]);
    for (const pid_t bridge : bridges)
        EXPECT_TRUE(waitFor([&] { return !isRunning(bridge); }));
}

} // namespace
} // namespace nightjar
