// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/radio/ProcessFacts.h"
#include "tests/radio/RadioFixture.h"

#include <fstream>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;
using ::testing::Not;

struct MeshRadioFailure : RadioFixture {
    void expectNoBridgeLeft() {
        EXPECT_TRUE(passTimeUntil([] { return childProcesses().empty(); }));
        EXPECT_TRUE(clock.waitUntilIdle());
    }
};

struct ConnectFailure {
    std::string behaviours;
    std::string error;
};

struct MeshRadioConnectFailure : MeshRadioFailure, ::testing::WithParamInterface<ConnectFailure> {};

TEST_P(MeshRadioConnectFailure, isToldOnceAndLeavesNoBridge) {
    useBridge(GetParam().behaviours);
    connect();

    EXPECT_TRUE(tells("not connected: " + GetParam().error)) << ::testing::PrintToString(story);
    expectNoBridgeLeft();
    sendText("hello");
    EXPECT_TRUE(tells("hello failed: bridgeStopped"));
    EXPECT_THAT(story, Not(::testing::Contains(HasSubstr("lost"))));
    EXPECT_THAT(story, Not(::testing::Contains("status after the answer")));
    EXPECT_THAT(story, ::testing::SizeIs(::testing::Le(4u))) << "nothing follows";
}

INSTANTIATE_TEST_SUITE_P(
    Bridges, MeshRadioConnectFailure,
    ::testing::Values(
        ConnectFailure{"error-on-connect", "bridge(No such radio.)"},
        ConnectFailure{"bare-error-on-connect", "bridge(Halvard Meshtastic Bridge reported an error.)"},
        ConnectFailure{"wrong-answer-on-connect", "invalidBridgeReply"},
        ConnectFailure{"no-port-on-connect", "invalidBridgeReply"},
        ConnectFailure{"exits-on-connect", "bridgeStopped"}, ConnectFailure{"exits-at-once", "bridgeStopped"},
        ConnectFailure{"version-2-at-start",
                       "bridge(Halvard Meshtastic Bridge uses an incompatible protocol version.)"},
        ConnectFailure{"version-2-on-connect",
                       "bridge(Halvard Meshtastic Bridge uses an incompatible protocol version.)"}),
    [](const auto& row) {
        auto name = row.param.behaviours;
        std::ranges::replace(name, '-', '_');
        return name;
    });

TEST_F(MeshRadioFailure, aPortThatIsNotThereIsNoRadio) {
    useBridge("good");
    for (const std::optional<std::string>& missing :
         {std::optional<std::string>(), std::optional<std::string>(""),
          std::optional<std::string>("/dev/cu.usbmodem2")}) {
        story.clear();
        radio->connect(missing, listener(), [this](auto result) { story.push_back(toText(result.error())); });
        EXPECT_TRUE(tells("noRadio"));
    }
    EXPECT_TRUE(childProcesses().empty());
}

TEST_F(MeshRadioFailure, aProgramThatCannotBeStartedIsTheSystemsError) {
    connect();
    EXPECT_TRUE(tells("not connected: bridgeMissing"));

    std::filesystem::create_directory(folder / "a folder");
    std::ofstream(folder / "not executable") << "#!/bin/sh\n";
    std::ofstream(folder / "no format") << "neither script nor program";
    std::filesystem::permissions(folder / "no format", std::filesystem::perms::owner_all);
    for (const auto& [name, sentence] :
         std::vector<std::pair<std::string, std::string>>{{"a folder", "Permission denied"},
                                                          {"not executable", "Permission denied"},
                                                          {"gone by now", "No such file or directory"},
                                                          {"no format", "Exec format error"}}) {
        story.clear();
        host.addFile(folder / name, SimulatedHostEnvironment::FileKind::executable);
        host.setEnvironmentVariable("HALVARD_MESHTASTIC_BRIDGE_PATH", (folder / name).string());
        connect();
        EXPECT_TRUE(
            tells("not connected: system(Halvard Meshtastic Bridge couldn’t be started: " + sentence + ".)"))
            << ::testing::PrintToString(story);
    }
    EXPECT_TRUE(childProcesses().empty());
}

TEST_F(MeshRadioFailure, aBridgeThatDoesNotAnswerConnectHasFifteenSeconds) {
    useBridge("silent-on-connect");
    connect();
    ASSERT_TRUE(clock.waitUntilArmed(15s));

    clock.advance(14999ms);
    EXPECT_TRUE(clock.waitUntilArmed(1ms));
    clock.advance(1ms);
    EXPECT_TRUE(tells("not connected: requestTimedOut"));
    expectNoBridgeLeft();
}

TEST_F(MeshRadioFailure, aRequestHasFiveSecondsAndItsFailureLeavesTheBridgeRunning) {
    ASSERT_TRUE(connectsTo("silent-on-send"));
    sendText("hello");
    ASSERT_TRUE(clock.waitUntilArmed(5s));
    clock.advance(5s);
    EXPECT_TRUE(tells("hello failed: requestTimedOut"));

    radio->requestRadioSettings(
        [this](auto result) { story.push_back(result ? "settings asked" : "failed"); });
    EXPECT_TRUE(tells("settings asked"));
    EXPECT_TRUE(tells("radioSettings hops 0")) << "an answer that is more than an answer is an event too";
    EXPECT_LT(positionOf("settings asked"), positionOf("radioSettings hops 0"));
}

TEST_F(MeshRadioFailure, sendTextFailsByItsAnswerAndTheNextOneWorks) {
    for (const auto& [behaviours, error] : std::vector<std::pair<std::string, std::string>>{
             {"error-on-send", "bridge(Radio is busy.)"}, {"no-packet-on-send", "invalidBridgeReply"}}) {
        ASSERT_TRUE(connectsTo(behaviours));
        sendText("hello");
        EXPECT_TRUE(tells("hello failed: " + error)) << ::testing::PrintToString(story);
        EXPECT_EQ(timesTold("lost bridgeStopped"), 0);
        radio->applyRadioSettings({.hopLimit = 3},
                                  [this](auto result) { story.push_back(result ? "applied" : "no"); });
        EXPECT_TRUE(tells("radioSettings hops 3"));
        story.clear();
    }
}

TEST_F(MeshRadioFailure, aLateAnswerAndASecondAnswerDoNothing) {
    ASSERT_TRUE(connectsTo("answers-one-late"));
    sendText("one");
    ASSERT_TRUE(tells("status got one"));
    clock.advance(5s);
    ASSERT_TRUE(tells("one failed: requestTimedOut"));
    sendText("two");
    ASSERT_TRUE(tells("status got two"));
    sendText("three");
    EXPECT_TRUE(tells("two sent 102")) << "each answer goes to the request whose identifier it carries";

    ASSERT_TRUE(connectsTo("answers-twice"));
    sendText("four");
    ASSERT_TRUE(tells("four sent 101"));
    sendText("five");
    ASSERT_TRUE(tells("five sent 102"));
    EXPECT_EQ(timesTold("four sent 101"), 1);
}

TEST_F(MeshRadioFailure, aRequestThatCannotBeWrittenFailsAlone) {
    ASSERT_TRUE(connectsTo("closes-input"));
    ASSERT_TRUE(tells("status input closed"));
    sendText("hello");
    EXPECT_TRUE(tells("hello failed: system(Halvard Meshtastic Bridge couldn’t be reached: Broken pipe.)"))
        << ::testing::PrintToString(story);
    EXPECT_EQ(childProcesses().size(), 1u);

    disconnect();
    EXPECT_TRUE(tells("disconnect done")) << "without its two seconds";
    expectNoBridgeLeft();
}

TEST_F(MeshRadioFailure, aBridgeThatDoesNotReadGetsNoStaleRequestsLater) {
    ASSERT_TRUE(connectsTo("stops-reading"));
    ASSERT_TRUE(tells("status reading no more"));
    const std::string filling(1000, 'f');
    for (int i = 0; i < 10; ++i)
        sendText(filling);
    sendText("stale");
    ASSERT_TRUE(passTimeUntil([&] { return timesTold("stale failed: requestTimedOut") == 1; }));

    sendText("fresh");
    ::kill(numberTold("pid"), SIGUSR1);
    EXPECT_TRUE(tells("status got fresh"));
    EXPECT_EQ(timesTold("status got stale"), 0);
    EXPECT_EQ(timesTold(filling + " failed: requestTimedOut"), 10);
}

TEST_F(MeshRadioFailure, requestsBeyondTheWriteLimitFailAtOnce) {
    options.unwrittenBytes = 20000;
    createRadio();
    ASSERT_TRUE(connectsTo("stops-reading"));
    const std::string filling(1000, 'f');
    for (int i = 0; i < 40; ++i)
        sendText(filling);

    EXPECT_TRUE(tells(filling + " failed: system(Halvard Meshtastic Bridge couldn’t be reached: "
                                "No buffer space available.)"));
    EXPECT_EQ(timesTold(filling + " failed: requestTimedOut"), 0);
}

} // namespace
} // namespace nightjar
