// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/ReadableText.h"

#include <gtest/gtest.h>

namespace nightjar::headless {
namespace {

TEST(ReadableTextTest, nothingThatControlsATerminalGetsThrough) {
    EXPECT_EQ(terminalSafe("Fox – Füchsin 🦊"), "Fox – Füchsin 🦊");
    EXPECT_EQ(terminalSafe("a\r\nb\tc\u2028d\u0085e"), "a  b c d e");
    EXPECT_EQ(terminalSafe("\x1b[2Jx\x07\x7f\x08"), "\uFFFD[2Jx\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(terminalSafe(std::string_view("a\0b", 3)), "a\uFFFDb");
    EXPECT_EQ(terminalSafe("\u009b31m \u202eevil\u2069 \u200f"), "\uFFFD31m \uFFFDevil\uFFFD \uFFFD");
    EXPECT_EQ(terminalSafe("broken \xc3( \xff"), "broken \uFFFD( \uFFFD");
}

TEST(ReadableTextTest, aVeryLongTextIsCutAtACharacter) {
    EXPECT_EQ(terminalSafe("äöü", 3), "äöü");
    EXPECT_EQ(terminalSafe("äöüß", 3), "äöü…");
    EXPECT_EQ(terminalSafe(std::string(1'000'000, 'x')).size(), 1000 + std::string_view("…").size());
}

TEST(ReadableTextTest, aNodeIsDescribedByHowItIsReached) {
    const Date now{Seconds{100'000}};
    MeshNode node;
    node.number = 0xabcd;
    node.lastSeen = now;
    EXPECT_EQ(nodeSentence(node, "!0000abcd", now), "node !0000abcd reached over the mesh");
    node.hopsAway = 1;
    EXPECT_EQ(nodeSentence(node, "Fox", now), "node Fox (!0000abcd) reached over the mesh, 1 hop");
    node.hopsAway = 0;
    node.batteryLevel = 84;
    node.signalToNoise = 6.25F;
    EXPECT_EQ(nodeSentence(node, "Fox", now),
              "node Fox (!0000abcd) heard directly, battery 84 %, SNR 6.2 dB");
    node.batteryLevel = 101;
    EXPECT_EQ(nodeSentence(node, "Fox", now + Seconds{7200}),
              "node Fox (!0000abcd) not heard lately, external power, SNR 6.2 dB");
}

} // namespace
} // namespace nightjar::headless
