// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/base/Text.h"
#include "core/base/Uuid.h"

#include <cmath>
#include <gtest/gtest.h>
#include <set>

namespace nightjar {
namespace {

using namespace std::string_literals;

TEST(Text, trimsUnicodeWhiteSpaceAtBothEnds) {
    const struct {
        std::string text, trimmed;
    } cases[] = {
        {"", ""},
        {" \t\r\n\v\f", ""},
        {"  a b\n", "a b"},
        {"\u00A0\u2003\u3000a\u2028\u0085", "a"},
        {"\u1680\u202F\u205F", ""},
        {"\u200Ba\u200B", "\u200Ba\u200B"}, // a zero width space is no white space
        {"\xFF a \xFF", "\xFF a \xFF"},
        {"a \xE2\x80", "a \xE2\x80"},
        {"\x85 a", "\x85 a"}, // a lone continuation byte is not U+0085
        {" é ", "é"},
        {"\0 "s, "\0"s},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(trimmed(text), expected) << text;
}

TEST(Text, tellsWellFormedUtf8AndRepairsTheRest) {
    const struct {
        std::string text, repaired;
    } cases[] = {
        {"plain ascii that is longer than eight bytes", ""},
        {"Grüße 🌲 \u0800 \uFFFD \U0010FFFF", ""},
        {"\0"s, ""},
        {"a\xFF"
         "b",
         "a\uFFFDb"},
        {"\xC0\x80", "\uFFFD\uFFFD"},                     // overlong NUL
        {"\xE0\x80\xAF", "\uFFFD\uFFFD\uFFFD"},           // overlong slash
        {"\xF0\x80\x80\xAF", "\uFFFD\uFFFD\uFFFD\uFFFD"}, // overlong slash
        {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},           // a surrogate
        {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"}, // above U+10FFFF
        {"12345678\xE2\x82", "12345678\uFFFD\uFFFD"},     // cut off
        {"\x80"
         "1234567",
         "\uFFFD"
         "1234567"},
    };
    for (const auto& [text, repaired] : cases) {
        EXPECT_EQ(isValidUtf8(text), repaired.empty()) << text;
        EXPECT_EQ(withReplacedInvalidUtf8(text), repaired.empty() ? text : repaired);
    }
}

TEST(Text, writesDoublesShortestWithAFraction) {
    const struct {
        double value;
        const char* text;
    } cases[] = {{83, "83.0"},
                 {0.1, "0.1"},
                 {-0.0, "-0.0"},
                 {1e16, "1e+16"},
                 {5e-324, "5e-324"},
                 {1.5, "1.5"},
                 {1746102896.25, "1746102896.25"}};
    for (const auto& [value, text] : cases)
        EXPECT_EQ(shortestText(value), text);
}

TEST(Uuid, readsEitherCaseAndWritesUpperCase) {
    const auto uuid = Uuid::fromText("8c2f0e6a-0B1d-4aE0-8000-0000000000fF");
    ASSERT_TRUE(uuid);
    EXPECT_EQ(uuid->text(), "8C2F0E6A-0B1D-4AE0-8000-0000000000FF");
}

TEST(Uuid, refusesEveryOtherForm) {
    for (const char* text : {"", "8C2F0E6A0B1D4AE080000000000000FF", "{8C2F0E6A-0B1D-4AE0-8000-0000000000FF}",
                             "8C2F0E6A-0B1D-4AE0-8000-0000000000F", "8C2F0E6A-0B1D-4AE0-8000-0000000000FFF",
                             "8C2F0E6A-0B1D-4AE0-8000-0000000000FG", "8C2F0E6A00B1D-4AE0-8000-000000000FF",
                             "8C2F0E6-A0B1D-4AE0-8000-0000000000FF", " C2F0E6A-0B1D-4AE0-8000-0000000000FF",
                             "8C2F0E6A-0B1D-4AE0-8000-0000000000\xC3\xBF"}) {
        EXPECT_FALSE(Uuid::fromText(text)) << text;
    }
}

TEST(Uuid, randomOnesAreOfVersion4AndDiffer) {
    std::set<Uuid> seen;
    for (int i = 0; i < 1000; ++i) {
        const auto uuid = Uuid::random();
        EXPECT_EQ(uuid.text()[14], '4');
        EXPECT_EQ(uuid.bytes[8] & 0xC0, 0x80);
        EXPECT_EQ(Uuid::fromText(uuid.text()), uuid);
        seen.insert(uuid);
    }
    EXPECT_EQ(seen.size(), 1000u);
}

} // namespace
} // namespace nightjar
