// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "radio/WriteQueue.h"

#include "radio/FileDescriptor.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>

namespace nightjar {
namespace {

struct WriteQueueTest : ::testing::Test {
    WriteQueueTest() {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK), 0);
        reader = FileDescriptor(ends[0]);
        writer = FileDescriptor(ends[1]);
        ::fcntl(writer.get(), F_SETPIPE_SZ, 4096);
    }
    std::string readAll() {
        std::string text(1 << 20, '\0');
        const auto count = ::read(reader.get(), text.data(), text.size());
        text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return text;
    }
    FileDescriptor reader, writer;
    WriteQueue queue{20000};
    const Uuid first = Uuid::random(), second = Uuid::random(), third = Uuid::random();
};

TEST_F(WriteQueueTest, takesBackOnlyWhatHasNotBeenBegun) {
    const std::string longLine(6000, 'a');
    ASSERT_TRUE(queue.add(first, longLine));
    ASSERT_TRUE(queue.add(second, "second"));
    ASSERT_TRUE(queue.add(third, "third"));
    ASSERT_FALSE(queue.flush(writer.get()));
    ASSERT_GT(queue.waitingBytes(), 11u);

    queue.withdraw(first);
    queue.withdraw(second);
    std::string arrived;
    while (!queue.isEmpty()) {
        arrived += readAll();
        ASSERT_FALSE(queue.flush(writer.get()));
    }
    EXPECT_EQ(arrived + readAll(), longLine + "third");
    EXPECT_EQ(queue.waitingBytes(), 0u);
}

TEST_F(WriteQueueTest, refusesMoreThanItsLimit) {
    EXPECT_TRUE(queue.add(first, std::string(20000, 'a')));
    EXPECT_FALSE(queue.add(second, "b"));
    queue.withdraw(first);
    EXPECT_TRUE(queue.add(second, "b"));
}

TEST_F(WriteQueueTest, aBrokenPipeFailsLineByLine) {
    ::signal(SIGPIPE, SIG_IGN);
    ASSERT_TRUE(queue.add(first, "first"));
    ASSERT_TRUE(queue.add(second, "second"));
    reader.reset();

    for (const auto& request : {first, second}) {
        const auto failure = queue.flush(writer.get());
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->request, request);
        EXPECT_EQ(failure->error, std::errc::broken_pipe);
    }
    EXPECT_TRUE(queue.isEmpty());
    ::signal(SIGPIPE, SIG_DFL);
}

} // namespace
} // namespace nightjar
