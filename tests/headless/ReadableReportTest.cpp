// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/ReadableReport.h"
#include "tests/headless/StandIn.h"
#include "tests/support/ModelRig.h"

#include <QCoreApplication>

#include <gmock/gmock.h>

#include <optional>

namespace nightjar::headless {
namespace {

using nightjar::testing::node;
using nightjar::testing::received;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

class ReadableReportTest : public ::testing::Test, protected nightjar::testing::ModelRig {
protected:
    /// The lines without their time of day, which must be there.
    std::vector<std::string> lines() {
        QCoreApplication::processEvents();
        std::vector<std::string> texts;
        for (const auto& line : output.take()) {
            EXPECT_EQ(line.substr(0, 10), "12:00:00  ");
            texts.push_back(line.substr(10));
        }
        return texts;
    }
    void report() {
        m_report.emplace(*model, output, scheduler);
        m_report->start();
    }
    ReadableReport& reporting() { return *m_report; }

    KeptLines output;

private:
    std::optional<ReadableReport> m_report;
};

TEST_F(ReadableReportTest, tellsEachChangeOnce) {
    startConnected();
    report();
    EXPECT_THAT(lines(), ElementsAre("connection: Connected", "radio: Connected · waiting for radio settings",
                                     "guard: No position marked", "bluetooth: Bluetooth is starting…",
                                     "network: Local Network is ready"));

    hear(node(42).named("Fox").hops(0).seen(scheduler.now()));
    hear(received("Hello", 5, 42));
    hear(received("To you", 6, 43));
    EXPECT_THAT(lines(), ElementsAre("node Fox (!0000002a) heard directly", "Fox → Everyone: Hello",
                                     "!0000002b → Everyone: To you"));

    hear(node(42).named("Fox").hops(1).seen(scheduler.now()));
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(ReadableReportTest, anErrorIsToldAgainWhenItHappensAgain) {
    startConnected();
    report();
    output.lines.clear();
    const std::vector<std::string> expected{"ERROR: Antenna is missing"};
    for (int i = 0; i < 2; ++i) {
        event({.event = MeshtasticBridgeEvent::error, .error = "Antenna is missing"});
        EXPECT_EQ(lines(), expected);
    }
}

TEST_F(ReadableReportTest, messagesOfEarlierDaysAreNoNews) {
    startConnected();
    hear(received("yesterday", 1, 42));
    model.reset();
    create();
    report();
    EXPECT_TRUE(mainThread.runUntil([this] { return !radio->connects.empty(); }));
    radio->connects.back().done(port);
    hear(received("today", 2, 42));

    const auto printed = lines();
    EXPECT_THAT(printed, Contains(HasSubstr("today")));
    EXPECT_THAT(printed, Not(Contains(HasSubstr("yesterday"))));
}

TEST_F(ReadableReportTest, whatRadiosSayCannotControlTheTerminal) {
    startConnected();
    report();
    output.lines.clear();
    hear(node(42).named("Fox\x1b]0;x\x07\nALERT"));
    hear(received("one\r\n12:00:00  ALERT two\x1b[2J", 5, 42));
    reporting().tell({.identifier = "guarded-device-moved-1", .title = "Guarded\nmoved", .body = "\x9b"});
    for (const auto& line : lines()) {
        EXPECT_THAT(line, Not(HasSubstr("\x1b")));
        EXPECT_THAT(line, Not(HasSubstr("\n")));
        EXPECT_THAT(line, Not(HasSubstr("\x9b")));
    }
}

TEST_F(ReadableReportTest, aFloodOfNodesIsBoundedButNoAlertAndNoMessageIsLeftOut) {
    startConnected();
    report();
    output.lines.clear();
    constexpr std::uint32_t count = 1000;
    for (std::uint32_t i = 0; i < count; ++i) {
        hear(received("spam", 100 + i, 42));
        hear(node(1000 + i).named("n"));
    }
    reporting().tell({.identifier = "guarded-device-moved-1", .title = "Bicycle moved", .body = "far"});
    reporting().tell({.identifier = "message-1", .title = "Fox", .body = "is printed as a message"});
    QCoreApplication::processEvents();
    EXPECT_THAT(output.lines, SizeIs(1 + count + ReadableLines::linesPerSecond - 5));
    EXPECT_THAT(output.take(), Contains(HasSubstr("ALERT Bicycle moved: far")));

    scheduler.advance(std::chrono::seconds(1));
    EXPECT_THAT(output.take(), ElementsAre(HasSubstr("more lines were left out)")));
}

TEST_F(ReadableReportTest, aMachineIsToldWhenItComesGoesAndIsForgotten) {
    startConnected();
    report();
    auto& browser = model->localNetwork();
    browser.start();
    static_cast<void>(lines());
    const ServiceInstance printer{.name = "\u202EPrinter\n", .type = "_ipp._tcp", .domain = "local."};
    const auto id = LocalNetworkDevice::identifier(printer.name, printer.domain);
    const std::string safe = "\uFFFDPrinter ";
    for (int i = 0; i < 2; ++i) {
        network.announce(printer);
        browser.setLossAlert(true, id);
        EXPECT_THAT(lines(),
                    AllOf(Contains("network device " + safe + ": Printer"),
                          Contains("tracking " + safe + ", alert when it has been away for 600 seconds")));
        browser.forget(id);
        EXPECT_THAT(lines(), ElementsAre("no longer tracking " + safe)) << "and is told anew when it is back";
        network.vanish(printer);
        static_cast<void>(lines());
    }
}

TEST_F(ReadableReportTest, aSlowReaderGetsTheLatestState) {
    startConnected();
    report();
    output.lines.clear();
    output.room = 0;
    for (const auto* status : {"one", "two", "three"}) {
        event({.event = MeshtasticBridgeEvent::status, .status = status});
        QCoreApplication::processEvents();
    }
    EXPECT_THAT(output.lines, IsEmpty());

    output.room = 100;
    reporting().flush();
    EXPECT_THAT(lines(), ElementsAre("connection: three"));
}

} // namespace
} // namespace nightjar::headless
