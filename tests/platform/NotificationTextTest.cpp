// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/NotificationText.h"

#include <gtest/gtest.h>

#include <string>

namespace nightjar {
namespace {

using namespace std::string_literals;

TEST(NotificationText, hostileTextBecomesHarmless) {
    struct Case {
        std::string text;
        std::string title;
        std::string body;
    };
    const Case cases[] = {
        {"Fox 🚲 “Ä”", "Fox 🚲 “Ä”", "Fox 🚲 “Ä”"},
        {"a\0b"s, "a\uFFFDb", "a\uFFFDb"},
        {"\x1b[31mred\x7f\u0085", "\uFFFD[31mred\uFFFD\uFFFD", "\uFFFD[31mred\uFFFD\uFFFD"},
        {"\xff\xed\xa0\x80", "\uFFFD\uFFFD\uFFFD\uFFFD", "\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"a\r\nb\rc\nd\te\u2028f", "a b c d e f", "a\nb\nc\nd\te\nf"},
        {"key\u202egnol\u2069", "key\uFFFDgnol\uFFFD", "key\uFFFDgnol\uFFFD"},
        {"", "", ""},
    };
    for (const auto& [text, title, body] : cases) {
        EXPECT_EQ(notificationTitle(text).toStdString(), title);
        EXPECT_EQ(notificationBody(text).toStdString(), body);
    }
}

TEST(NotificationText, longTextIsCutBetweenCharacters) {
    const auto bicycles = [](std::size_t count) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i)
            text += "🚲";
        return text;
    };

    EXPECT_EQ(notificationTitle(bicycles(64)).toStdString(), bicycles(64));
    EXPECT_EQ(notificationTitle("x" + bicycles(64)).toStdString(), "x" + bicycles(63) + "…");
    EXPECT_EQ(notificationBody(std::string(10'000'000, 'y')).toStdString(), std::string(4096, 'y') + "…");
    EXPECT_EQ(notificationTitle(std::string(1'000, '\x80')).size(), 1) << "no character begins here at all";
}

TEST(NotificationText, markupShowsTheTextAsItIs) {
    EXPECT_EQ(escapedAsMarkup(QStringLiteral("<a href=\"x\">&amp;</a>")).toStdString(),
              "&lt;a href=\"x\"&gt;&amp;amp;&lt;/a&gt;");
}

} // namespace
} // namespace nightjar
