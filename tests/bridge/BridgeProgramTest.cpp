// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/bridge/RunningBridge.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <csignal>
#include <fstream>
#include <thread>

#include <poll.h>

namespace nightjar::bridge {
namespace {

using Command = MeshtasticBridgeCommand;
using Event = MeshtasticBridgeEvent;
using ::testing::HasSubstr;
using ::testing::StartsWith;

MeshtasticBridgeRequest request(Command command) {
    return {.requestID = {},
            .command = command,
            .port = {},
            .text = {},
            .recipient = {},
            .channel = {},
            .settings = {}};
}

MeshtasticBridgeRequest text(std::string what) {
    auto made = request(Command::sendText);
    made.text = std::move(what);
    made.channel = 0;
    return made;
}

TEST(BridgeProgram, wantsItsTwoArguments) {
    for (const auto& arguments :
         {std::vector<std::string>{}, {"serve"}, {"--jsonl", "serve"}, {"serve", "--jsonl", "x"}}) {
        RunningBridge bridge(arguments);
        EXPECT_EQ(bridge.wait(), 64);
        EXPECT_THAT(bridge.standardError(), StartsWith("Usage: halvard-meshtastic-bridge serve --jsonl\n"));
        EXPECT_FALSE(bridge.line());
    }
    RunningBridge version({"--version"});
    EXPECT_THAT(version.line().value_or(""), StartsWith("halvard-meshtastic-bridge "));
    EXPECT_EQ(version.wait(), 0);
}

TEST(BridgeProgram, holdsAWholeConversation) {
    RunningBridge bridge;
    EXPECT_EQ(bridge.line(), R"({"protocolVersion":1,"event":"ready"})");
    const Uuid early = bridge.send(text("too early"));
    EXPECT_EQ(bridge.answer(early).value().error, "No radio is connected.");

    EXPECT_EQ(bridge.answer(bridge.connect("echo")).value().event, Event::connected);
    EXPECT_EQ(bridge.event(Event::localNode).value().localNodeID, 2684354561U);
    EXPECT_EQ(bridge.answer(bridge.send(text("line\nfeed / \"slash\""))).value().event, Event::sent);
    EXPECT_EQ(bridge.event(Event::message).value().message->text, "Echo: line\nfeed / \"slash\"");
    const auto settings = bridge.answer(bridge.send(request(Command::readRadioSettings))).value().settings;
    ASSERT_TRUE(settings);
    auto apply = request(Command::applyRadioSettings);
    apply.settings = settings;
    EXPECT_EQ(bridge.answer(bridge.send(apply)).value().event, Event::sent);
    EXPECT_EQ(bridge.answer(bridge.send(request(Command::disconnect))).value().event, Event::ready);
    EXPECT_EQ(bridge.answer(bridge.send(request(Command::readRadioSettings))).value().event, Event::error);

    EXPECT_EQ(bridge.answer(bridge.connect("quiet")).value().event, Event::connected) << "the next radio";
    bridge.closeInput();
    EXPECT_EQ(bridge.wait(), 0);
}

TEST(BridgeProgram, saysWhyAPortIsNone) {
    const nightjar::testing::TemporaryFolder temporary;
    const std::string folder = temporary.path().string();
    std::ofstream(folder + "/broken.json") << "{";
    std::ofstream(folder + "/wrong.json")
        << R"({"scenario": 1, "radio": {"node": {"number": 1}}, "nods": []})";
    std::ofstream(folder + "/large.json") << std::string(5 << 20, ' ');
    const std::vector<std::pair<std::string, std::string>> cases{
        {"", "The connect request names no port."},
        {"/dev/does-not-exist", "The port /dev/does-not-exist does not exist."},
        {"/dev/null", "This bridge cannot speak to radios yet; it plays scenario files only."},
        {folder, "is neither a radio nor a scenario file."},
        {folder + "/broken.json", "The file is not a scenario: it does not hold valid JSON."},
        {folder + "/wrong.json", "The scenario file is not valid: nods is not a known key here."},
        {folder + "/large.json", "The scenario file is larger than 4 MB."},
    };
    RunningBridge bridge;
    for (const auto& [port, sentence] : cases) {
        auto connect = request(Command::connect);
        connect.port = port;
        const auto answer = bridge.answer(bridge.send(connect));
        ASSERT_TRUE(answer) << port;
        EXPECT_EQ(answer->event, Event::error);
        EXPECT_THAT(answer->error.value_or(""), HasSubstr(sentence));
    }
}

TEST(BridgeProgram, endsWhenAskedOrWhenTheClientIsGone) {
    {
        RunningBridge terminated;
        ASSERT_TRUE(terminated.line());
        terminated.signal(SIGTERM);
        EXPECT_EQ(terminated.wait(), 0);
    }
    {
        RunningBridge unread;
        ASSERT_TRUE(unread.answer(unread.connect("quiet")));
        unread.closeOutput();
        EXPECT_EQ(unread.wait(), 1) << "although its input is still open and nothing is to be written";
    }
}

TEST(BridgeProgram, answersWhatWasAskedBeforeTheInputEnded) {
    RunningBridge bridge;
    const Uuid connect = bridge.connect("quiet");
    const Uuid read = bridge.send(request(Command::readRadioSettings));
    bridge.closeInput();
    EXPECT_EQ(bridge.answer(connect).value().event, Event::connected);
    EXPECT_EQ(bridge.answer(read).value().event, Event::radioSettings);
    EXPECT_FALSE(bridge.line());
    EXPECT_EQ(bridge.wait(), 0);
}

TEST(BridgeProgram, survivesRequestsThatAreNone) {
    RunningBridge bridge;
    bridge.write("\n\r\nhello\n{}\n[]\n{\"requestID\":7}\n\xff\xfe\n" + std::string(3 << 20, 'x') + "\n");
    const std::string id = "b015defb-7509-4979-9bc5-2cae00000001";
    const std::vector<std::pair<std::string, std::string>> cases{
        {R"({"protocolVersion":1,"requestID":")" + id + R"(","command":"dance"})",
         "The request names no command that this bridge knows."},
        {R"({"protocolVersion":1,"requestID":")" + id + R"(","command":"sendText","channel":-1})",
         "The request cannot be read: a field is missing or of the wrong type."},
        {R"({"protocolVersion":2,"requestID":")" + id + R"(","command":"disconnect"})",
         "This bridge speaks version 1 of the protocol only."},
    };
    ASSERT_EQ(bridge.response().value().event, Event::ready);
    for (const auto& [line, sentence] : cases) {
        bridge.write(line + "\r\n");
        const auto answer = bridge.response();
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->requestID, Uuid::fromText(id));
        EXPECT_EQ(answer->error, sentence);
    }
}

TEST(BridgeProgram, sleepsThroughSilence) {
    RunningBridge bridge;
    const Uuid connect = bridge.connect("quiet");
    ASSERT_TRUE(bridge.answer(connect));
    ASSERT_TRUE(bridge.event(Event::radioSettings));
    ASSERT_TRUE(eventually([&] { return bridge.state() == 'S'; }));
    const auto before = bridge.status("voluntary_ctxt_switches");

    // Nothing will come, and waiting for it is what shows that nothing happens meanwhile.
    ::poll(nullptr, 0, 300);

    EXPECT_GT(before, 0);
    EXPECT_EQ(bridge.status("voluntary_ctxt_switches"), before);
}

TEST(BridgeProgram, keepsItsMemoryWhenTheClientStopsReading) {
    RunningBridge bridge;
    const Uuid connect = bridge.connect("flood");
    ASSERT_TRUE(bridge.answer(connect));
    ASSERT_TRUE(eventually([&] { return bridge.state() == 'S'; })) << "waits for the reader";
    const auto before = bridge.status("VmRSS");
    const auto line = encodeLine(request(Command::readRadioSettings)).value();

    const auto written = bridge.writeUntilFull(line);

    EXPECT_GT(written, 300U);
    EXPECT_LT(bridge.status("VmRSS"), before + 4096);
    bridge.closeInput();
    EXPECT_EQ(bridge.wait(), 0) << "does not wait for a reader at the end";
}

TEST(BridgeProgram, deliversAWholeFlood) {
    RunningBridge bridge;
    const Uuid connect = bridge.connect("flood");
    ASSERT_TRUE(bridge.answer(connect));
    ASSERT_TRUE(bridge.event(Event::radioSettings));
    std::size_t lines = 0;
    std::optional<std::string> last;
    while ((last = bridge.line()) && last->starts_with(R"({"protocolVersion":1,"event":"node")"))
        ++lines;
    EXPECT_EQ(lines, 1'000'000U);
    EXPECT_THAT(last.value_or(""), HasSubstr("The flood is over"));
    EXPECT_EQ(bridge.answer(bridge.send(request(Command::readRadioSettings))).value().event,
              Event::radioSettings);
}

TEST(BridgeProgram, writesHalfALineAndTheRestLater) {
    RunningBridge bridge;
    ASSERT_TRUE(bridge.line());
    const auto start = std::chrono::steady_clock::now();
    const Uuid connect = bridge.connect("half-lines");
    const Uuid refused = bridge.send(text("")); // would overtake the second half
    EXPECT_EQ(bridge.response().value().requestID, connect);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(300));
    EXPECT_EQ(bridge.answer(refused).value().event, Event::error);
}

TEST(BridgeProgram, breaksInTheWaysOfItsScenarios) {
    {
        RunningBridge bridge;
        ASSERT_TRUE(bridge.answer(bridge.connect("exit-on-send")));
        EXPECT_FALSE(bridge.answer(bridge.send(text("hello"))));
        EXPECT_EQ(bridge.wait(), 3);
    }
    {
        RunningBridge bridge;
        ASSERT_TRUE(bridge.answer(bridge.connect("exit-after-send")));
        EXPECT_EQ(bridge.answer(bridge.send(text("hello"))).value().event, Event::sent);
        EXPECT_EQ(bridge.wait(), 0);
    }
    {
        RunningBridge bridge;
        EXPECT_EQ(bridge.answer(bridge.connect("old-version")).value().protocolVersion, 0);
    }
    {
        RunningBridge bridge;
        ASSERT_TRUE(bridge.answer(bridge.connect("closes-output")));
        while (bridge.line()) {
        }
        EXPECT_TRUE(eventually([&] { return bridge.state() == 'S'; })) << "goes on running";
        bridge.closeInput();
        EXPECT_EQ(bridge.wait(), 0);
    }
    {
        RunningBridge bridge;
        ASSERT_TRUE(bridge.answer(bridge.connect("loud-standard-error")));
        EXPECT_EQ(bridge.answer(bridge.send(request(Command::readRadioSettings))).value().event,
                  Event::radioSettings)
            << "although nobody reads standard error";
        bridge.closeErrors();
        bridge.closeInput();
        EXPECT_EQ(bridge.wait(), 0);
    }
    {
        RunningBridge bridge;
        ASSERT_TRUE(bridge.answer(bridge.connect("stubborn")));
        bridge.signal(SIGTERM);
        bridge.closeInput();
        ASSERT_TRUE(eventually([&] { return bridge.state() == 'S'; }));
        bridge.signal(SIGKILL);
        EXPECT_EQ(bridge.wait(), 128 + SIGKILL);
    }
}

} // namespace
} // namespace nightjar::bridge
