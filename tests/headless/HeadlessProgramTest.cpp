// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/headless/RunningProgram.h"

#include <QDir>
#include <QFile>

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>

namespace nightjar::headless {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

const QStringList jsonLines{QStringLiteral("--headless"), QStringLiteral("--jsonl")};

std::string operation(const std::string& name, const std::string& arguments = {}) {
    return R"("controller":"NightjarModel","operation":")" + name + R"(","arguments":[)" + arguments + ']';
}
std::string get(const std::string& field) {
    return R"("controller":"NightjarModel","get":")" + field + '"';
}
std::string set(const std::string& field, const std::string& value) {
    return R"("controller":"NightjarModel","set":")" + field + R"(","value":)" + value;
}
std::string published(const std::string& field, const std::string& value = {}) {
    return R"("type":"published","controller":"NightjarModel","field":")" + field + R"(","value":)" + value;
}
std::string element(const std::string& field) {
    return R"("type":"element","controller":"NightjarModel","field":")" + field + '"';
}

/// A process that is gone, or that only waits for the system to forget it.
bool isGone(int process) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(process));
    return !file.open(QIODevice::ReadOnly) || file.readAll().contains(") Z ");
}

class HeadlessProgramTest : public testing::Test {
protected:
    void connect(RunningProgram& program) const {
        EXPECT_THAT(program.answerTo(operation("connect", '"' + portText() + '"')), HasSubstr("done"));
        EXPECT_NE(program.lineWith(published("connectionState", R"("Connected")")), "");
        EXPECT_NE(program.lineWith(published("radioSettingsState", R"("Loaded from radio")")), "");
    }
    /// As it stands in JSON.
    [[nodiscard]] std::string portText() const {
        return QString::fromStdString(home.port())
            .replace(QLatin1String("/"), QLatin1String("\\/"))
            .toStdString();
    }

    PrivateHome home;
};

TEST_F(HeadlessProgramTest, goesOnWhereTheScreenDoesNotAnswer) {
    const QByteArray screen = qgetenv("DISPLAY");
    qputenv("DISPLAY", ":9999");
    RunningProgram program(home, {});
    screen.isNull() ? qunsetenv("DISPLAY") : qputenv("DISPLAY", screen);

    EXPECT_NE(program.lineWith("Choose a USB radio in Settings"), "");
    EXPECT_THAT(program.standardError(),
                HasSubstr("The screen does not answer; going on as with --headless.\n"));
    program.signal(SIGTERM);
    EXPECT_EQ(program.exitStatus(), 0);
}

TEST_F(HeadlessProgramTest, isDrivenThroughAWholeDayAndKeepsWhatItLearnt) {
    {
        RunningProgram program(home, jsonLines);
        EXPECT_NE(program.lineWith(published("connectionState", R"("Connecting…")")), "");
        EXPECT_NE(program.lineWith(published("connectionState", R"("Choose a USB radio in Settings")")), "");
        EXPECT_THAT(program.answerTo(get("bridgeStatus")), HasSubstr(R"("value":"Installed")"));
        connect(program);
        EXPECT_NE(program.lineWith(R"("longName":"Bicycle")"), "");

        EXPECT_THAT(program.answerTo(operation("sendMessage", R"("  hello  ")")), HasSubstr("done"));
        EXPECT_NE(program.lineWith(R"("text":"hello")"), "");
        EXPECT_NE(program.lineWith(R"("text":"Echo: hello")"), "");
        EXPECT_THAT(program.answerTo(operation("displayName", "2")), HasSubstr(R"("value":"Bicycle")"));

        auto settings = program.answerTo(get("loraConfig"));
        settings = settings.substr(settings.find(R"("value":)") + 8);
        settings.pop_back();
        const auto hops = settings.find(R"("hopLimit":5)");
        ASSERT_NE(hops, std::string::npos);
        settings.replace(hops, 12, R"("hopLimit":4)");
        EXPECT_THAT(program.answerTo(operation("applyRadioSettings", settings)), HasSubstr("done"));
        EXPECT_NE(program.lineWith(published("radioSettingsState", R"("Applying to radio…")")), "");
        EXPECT_NE(program.lineWith(published("radioSettingsState", R"("Loaded from radio")")), "");
        EXPECT_THAT(program.answerTo(get("loraConfig")), HasSubstr(R"("hopLimit":4)"));

        EXPECT_THAT(program.answerTo(operation("setGuarded", "77")),
                    HasSubstr("There is no node with the number 77."));
        EXPECT_THAT(program.answerTo(set("parkingRadius", "0.25")), HasSubstr("done"));
        EXPECT_THAT(program.answerTo(set("guardProfile", R"("bicycle")")), HasSubstr("done"));
        EXPECT_THAT(program.answerTo(operation("setGuarded", "2")), HasSubstr("done"));
        EXPECT_THAT(program.answerTo(operation("markGuardedPosition")), HasSubstr("done"));
        EXPECT_THAT(program.lineWith(R"("identifier":"guarded-device-moved-)"),
                    AllOf(HasSubstr(R"("title":"Bicycle moved")"), HasSubstr(R"("sound":"critical")")));

        EXPECT_THAT(program.answerTo(operation("disconnect")), HasSubstr("done"));
        EXPECT_NE(program.lineWith(published("connectionState", R"("Disconnected")")), "");
        EXPECT_THAT(program.answerTo(get("nodes")), HasSubstr(R"("value":[])"));
        connect(program);
        program.closeInput();
        EXPECT_EQ(program.exitStatus(), 0);
        EXPECT_EQ(program.standardError(), "");
    }

    RunningProgram again(home, jsonLines);
    EXPECT_NE(again.lineWith(published("parkingRadius", "0.25")), "");
    EXPECT_NE(again.lineWith(published("guardProfile", R"("bicycle")")), "");
    EXPECT_NE(again.lineWith(element("messages")), "");
    EXPECT_NE(again.lineWith(published("connectionState", R"("Connected")")), "");
    EXPECT_THAT(again.answerTo(get("knownBaseNames")), HasSubstr(portText() + R"(":"Test Base")"));
    EXPECT_THAT(again.answerTo(get("guardedNodeID")), HasSubstr(R"("value":2})"));
    EXPECT_THAT(again.answerTo(get("parkedPosition")), HasSubstr(R"("nodeNumber":2)"));
    EXPECT_THAT(again.answerTo(get("history")), HasSubstr(R"("nodeNumber":2)"));
    EXPECT_THAT(again.answerTo(get("messages")),
                AllOf(HasSubstr(R"("text":"hello")"), HasSubstr("Echo: hello")));
}

TEST_F(HeadlessProgramTest, everyEndingIsInOrderAndLeavesNoProcess) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        RunningProgram program(home, jsonLines);
        if (number == SIGINT)
            connect(program);
        else
            EXPECT_NE(program.lineWith(published("connectionState", R"("Connected")")), "");
        const auto children = program.children();
        EXPECT_THAT(children, SizeIs(1));

        program.signal(number);

        EXPECT_EQ(program.exitStatus(), 0) << number;
        for (const int child : children)
            EXPECT_TRUE(isGone(child)) << number;
    }
}

TEST_F(HeadlessProgramTest, whatWasAskedBeforeTheEndOfTheInputIsAnswered) {
    RunningProgram program(home, jsonLines);
    program.write("nonsense");
    for (int i = 0; i < 2000; ++i) {
        program.write(R"({"controller":"NightjarModel","operation":"sendMessage","arguments":["x"],"id":)" +
                      std::to_string(i) + "}");
    }
    program.write(R"({"controller":"NightjarModel","set":"parkingRadius","value":100,"id":"last"})");
    program.closeInput();

    EXPECT_EQ(program.exitStatus(), 0);
    const auto done = std::ranges::count_if(
        program.lines(), [](const std::string& line) { return line.starts_with(R"({"type":"done")"); });
    EXPECT_EQ(done, 2001);
    EXPECT_NE(program.lineWith("refused"), "");
    EXPECT_NE(program.lineWith(R"({"type":"done","id":"last"})"), "");
    EXPECT_NE(program.lineWith(published("parkingRadius", "100")), "");
}

TEST_F(HeadlessProgramTest, endsWhenItsReaderLeaves) {
    QProcess shell;
    shell.setProcessEnvironment(home.environment());
    shell.start(QStringLiteral("/bin/sh"),
                {QStringLiteral("-c"), QStringLiteral("\"$0\" --headless --jsonl | head -n 1"),
                 QStringLiteral(NIGHTJAR_PROGRAM)});
    for (int i = 0; i < 600 && shell.state() != QProcess::NotRunning; ++i) {
        shell.write("{}\n");
        shell.waitForFinished(100);
    }
    EXPECT_EQ(shell.state(), QProcess::NotRunning);
    EXPECT_THAT(shell.readAllStandardOutput().toStdString(), HasSubstr("published"));
    EXPECT_EQ(shell.readAllStandardError().toStdString(), "");
}

TEST_F(HeadlessProgramTest, aFullDiskEndsItWithASentence) {
    QProcess process;
    process.setProcessEnvironment(home.environment());
    process.setStandardOutputFile(QStringLiteral("/dev/full"));
    process.start(QStringLiteral(NIGHTJAR_PROGRAM), {QStringLiteral("--headless")});
    EXPECT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 74);
    EXPECT_THAT(process.readAllStandardError().toStdString(),
                HasSubstr("Standard output cannot be written: "));
}

TEST_F(HeadlessProgramTest, readableLinesGoOnWithoutInput) {
    RunningProgram program(
        home, {QStringLiteral("--headless"), QStringLiteral("--watch"), QStringLiteral("network")});
    program.closeInput();
    EXPECT_NE(program.lineWith("network: Looking for devices…"), "");
    EXPECT_NE(program.lineWith("connection: Choose a USB radio in Settings"), "");
    program.signal(SIGTERM);
    EXPECT_EQ(program.exitStatus(), 0);
    EXPECT_EQ(program.standardError(), "");
}

TEST_F(HeadlessProgramTest, anUnknownOptionIsRefused) {
    RunningProgram program(home, {QStringLiteral("--bogus")});
    EXPECT_EQ(program.exitStatus(), 64);
    EXPECT_THAT(program.lines(), IsEmpty());
    EXPECT_THAT(program.standardError(), HasSubstr("Unknown option \"--bogus\""));
}

TEST_F(HeadlessProgramTest, theDemoAlertsOnceOfEachThingAndLeavesNothingBehind) {
    RunningProgram program(home, {QStringLiteral("--demo"), QStringLiteral("--headless")});
    EXPECT_NE(program.lineWith("guard: Armed"), "");
    EXPECT_NE(program.lineWith("ALERT Keys is nearby again: "), "");
    EXPECT_NE(program.lineWith("ALERT Device returned to the network: Office Printer"), "");
    program.signal(SIGTERM);

    EXPECT_EQ(program.exitStatus(), 0);
    const auto countOf = [&](std::string_view piece) {
        return std::ranges::count_if(program.lines(),
                                     [piece](const std::string& line) { return line.contains(piece); });
    };
    EXPECT_EQ(countOf("tracking Keys, alert after 15 seconds without a signal"), 1);
    EXPECT_GE(countOf("guard: Movement detected"), 3);
    EXPECT_EQ(countOf("ALERT Bicycle moved: "), 1);
    EXPECT_EQ(countOf("ALERT Keys is no longer nearby: "), 1);
    EXPECT_EQ(countOf("ALERT Device left the network: Office Printer"), 1);
    EXPECT_EQ(countOf("ALERT Device returned to the network: Office Printer"), 1);
    EXPECT_EQ(countOf("ALERT"), 5) << "the loudspeaker is never away for long";
    EXPECT_THAT(program.lines(), Not(testing::Contains(HasSubstr("ERROR"))));
    for (const auto* folder : {"tmp", "data", "config", "home"}) {
        EXPECT_TRUE(QDir(home.path(QLatin1String(folder))).isEmpty()) << folder;
    }
}

} // namespace
} // namespace nightjar::headless
