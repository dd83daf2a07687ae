// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "radio/LineSplitter.h"

#include <gmock/gmock.h>
#include <vector>

namespace nightjar {
namespace {

using ::testing::ElementsAre;

struct LineSplitterTest : ::testing::Test {
    void feed(std::string_view bytes) {
        splitter.feed(bytes, [&](std::string_view line) {
            lines.emplace_back(line);
            return line != "stop";
        });
    }
    LineSplitter splitter{8};
    std::vector<std::string> lines;
};

TEST_F(LineSplitterTest, putsLinesTogetherHoweverTheyArrive) {
    const std::string text = "one\ntwo\n\n\nthree\r\n\nfour";
    for (std::size_t cut = 0; cut <= text.size(); ++cut) {
        lines.clear();
        splitter = LineSplitter(8);
        feed(text.substr(0, cut));
        feed(text.substr(cut));
        EXPECT_THAT(lines, ElementsAre("one", "two", "three\r")) << cut;
        EXPECT_EQ(splitter.keptBytes(), 4u);
    }
}

TEST_F(LineSplitterTest, passesOverLinesBeyondTheLimitAndKeepsNothingOfThem) {
    feed("12345678\n123456789\nafter\n");
    feed("1234");
    feed("56789");
    EXPECT_EQ(splitter.keptBytes(), 0u);
    feed("still the long one\nnext\n1234");
    feed("5678\n");

    EXPECT_THAT(lines, ElementsAre("12345678", "after", "next", "12345678"));
}

TEST_F(LineSplitterTest, dropsWhatFollowsOnceNoMoreIsWanted) {
    feed("one\nst");
    feed("op\ntwo\nthree");

    EXPECT_THAT(lines, ElementsAre("one", "stop"));
    EXPECT_EQ(splitter.keptBytes(), 0u);
}

} // namespace
} // namespace nightjar
