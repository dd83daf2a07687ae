// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/LineBuffer.h"
#include "app/headless/LineInput.h"
#include "app/headless/LineOutput.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <gmock/gmock.h>

#include <array>
#include <chrono>
#include <csignal>
#include <functional>
#include <ostream>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace nightjar::headless {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

bool waitFor(const std::function<bool()>& condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition() && timer.elapsed() < 10'000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    return condition();
}

std::vector<std::string> linesOf(LineBuffer& buffer) {
    std::vector<std::string> lines;
    while (const auto line = buffer.next())
        lines.push_back(line->tooLong ? "(too long)" : line->text);
    return lines;
}

TEST(LineBufferTest, cutsLinesWhereverTheBytesAreSplit) {
    const std::string text = "one\n\nthree\nrest";
    for (std::size_t split = 0; split <= text.size(); ++split) {
        LineBuffer buffer(100);
        buffer.append(text.substr(0, split));
        auto lines = linesOf(buffer);
        buffer.append(text.substr(split));
        buffer.end();
        for (auto& line : linesOf(buffer))
            lines.push_back(line);
        EXPECT_THAT(lines, ElementsAre("one", "", "three", "rest")) << split;
    }
}

TEST(LineBufferTest, aTooLongLineIsToldOnceAndSkippedAndTheNextOneIsRead) {
    LineBuffer buffer(4);
    std::vector<std::string> lines;
    for (const auto* piece : {"1234\n12", "345", "678", "9\nnext\n", "12345\n", "end"}) {
        buffer.append(piece);
        for (auto& line : linesOf(buffer))
            lines.push_back(line);
    }
    buffer.end();
    for (auto& line : linesOf(buffer))
        lines.push_back(line);
    EXPECT_THAT(lines, ElementsAre("1234", "(too long)", "next", "(too long)", "end"));
}

struct Pipe {
    enum class Kind { pipe, socket };
    explicit Pipe(Kind kind = Kind::pipe) {
        std::array<int, 2> ends{};
        const int result =
            kind == Kind::pipe ? ::pipe(ends.data()) : ::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data());
        EXPECT_EQ(result, 0);
        reader = ends[0];
        writer = ends[1];
    }
    ~Pipe() {
        closeReader();
        closeWriter();
    }
    void closeReader() { close(reader); }
    void closeWriter() { close(writer); }
    std::string readSome() const {
        std::string bytes(std::size_t{1} << 20, '\0');
        ::fcntl(reader, F_SETFL, O_NONBLOCK);
        const auto count = ::read(reader, bytes.data(), bytes.size());
        bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return bytes;
    }
    static void close(int& descriptor) {
        if (descriptor >= 0)
            ::close(descriptor);
        descriptor = -1;
    }
    int reader = -1;
    int writer = -1;
};

void PrintTo(Pipe::Kind kind, std::ostream* stream) {
    *stream << (kind == Pipe::Kind::pipe ? "pipe" : "socket");
}

class LineOutputTest : public testing::TestWithParam<Pipe::Kind> {
protected:
    void SetUp() override { std::signal(SIGPIPE, SIG_IGN); }
};

TEST_P(LineOutputTest, aReaderThatSleepsNeitherBlocksNorLosesLines) {
    Pipe pipe(GetParam());
    const int flags = ::fcntl(pipe.writer, F_GETFL);
    LineOutput output(pipe.writer, 100'000);
    bool drained = false;
    QObject::connect(&output, &LineOutput::drained, [&] { drained = true; });

    std::string sent;
    for (int i = 0; i < 10'000; ++i) {
        const auto line = "line " + std::to_string(i) + std::string(50, '.');
        output.send(line);
        sent += line + '\n';
    }
    output.writeOut();
    EXPECT_TRUE(output.isFull());
    EXPECT_EQ(::fcntl(pipe.writer, F_GETFL), flags);

    std::string received;
    EXPECT_TRUE(waitFor([&] {
        received += pipe.readSome();
        return received.size() == sent.size();
    }));
    EXPECT_EQ(received, sent);
    EXPECT_TRUE(waitFor([&] { return drained; }));
    EXPECT_FALSE(output.isFull());
}

TEST_P(LineOutputTest, aReaderThatLeftIsToldOnceAndNothingCrashes) {
    Pipe pipe(GetParam());
    LineOutput output(pipe.writer);
    std::vector<QString> lost;
    QObject::connect(&output, &LineOutput::lost, [&](const QString& sentence) { lost.push_back(sentence); });
    pipe.closeReader();

    output.send("one");
    EXPECT_TRUE(waitFor([&] { return !lost.empty(); }));
    output.send("two");
    output.writeOut();
    output.finish(std::chrono::milliseconds(0));

    EXPECT_THAT(lost, ElementsAre(QString()));
}

TEST_P(LineOutputTest, finishGivesUpOnAReaderThatTakesNothing) {
    Pipe pipe(GetParam());
    LineOutput output(pipe.writer);
    output.send(std::string(std::size_t{2} << 20, 'x'));
    output.finish(std::chrono::milliseconds(1));
    EXPECT_TRUE(output.isFull());
    EXPECT_FALSE(output.isLost());
}

INSTANTIATE_TEST_SUITE_P(, LineOutputTest, testing::Values(Pipe::Kind::pipe, Pipe::Kind::socket),
                         testing::PrintToStringParamName());

TEST(LineOutputDiskTest, aFullDiskIsToldWithItsReason) {
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(full, 0);
    LineOutput output(full);
    QString reason;
    QObject::connect(&output, &LineOutput::lost, [&](const QString& sentence) { reason = sentence; });
    output.send("one");
    output.writeOut();
    EXPECT_FALSE(reason.isEmpty());
    ::close(full);
}

TEST(LineInputTest, readsLinesPausesAndTellsTheEndLast) {
    Pipe pipe;
    std::vector<std::string> lines;
    LineInput* paused = nullptr;
    LineInput input(pipe.reader, {.onLine =
                                      [&](std::string_view line) {
                                          lines.emplace_back(line);
                                          if (line == "pause")
                                              paused->setPaused(true);
                                      },
                                  .onTooLongLine = [&] { lines.emplace_back("(too long)"); },
                                  .onEnd = [&] { lines.emplace_back("(end)"); }});
    paused = &input;
    input.start();
    const std::string text = "one\npause\ntwo\n";
    ASSERT_EQ(::write(pipe.writer, text.data(), text.size()), std::ssize(text));
    EXPECT_TRUE(waitFor([&] { return lines.size() == 2; }));
    QCoreApplication::processEvents();
    EXPECT_THAT(lines, ElementsAre("one", "pause"));

    ASSERT_EQ(::write(pipe.writer, "rest", 4), 4);
    pipe.closeWriter();
    input.setPaused(false);
    EXPECT_TRUE(waitFor([&] { return lines.size() == 5; }));
    EXPECT_THAT(lines, ElementsAre("one", "pause", "two", "rest", "(end)"));
}

} // namespace
} // namespace nightjar::headless
