// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/text/ShownText.h"
#include "ui/text/DurationText.h"

#include <gmock/gmock.h>

#include <limits>

namespace nightjar {
namespace {

TEST(ShownTextTest, makesForeignTextFitToBeShown) {
    const auto line = [](std::string_view text) { return shownLine(text).toStdString(); };
    EXPECT_EQ(line("a\nb\tc"), "a b c");
    EXPECT_EQ(line(std::string_view("a\0b", 3)), "a b");
    EXPECT_EQ(line("\u202egnp.exe\u2066"), "gnp.exe");
    EXPECT_EQ(line("<b>&amp;"), "<b>&amp;");
    EXPECT_EQ(line("\xff"), "\ufffd");
    EXPECT_EQ(shownText("a\nb\u2029c").toStdString(), "a\nb\nc");

    const QString cut = shownLine(std::string(10'000, 'x'));
    EXPECT_EQ(cut.size(), 500);
    EXPECT_TRUE(cut.endsWith(u'…'));
    std::string faces;
    for (int count = 0; count < 600; ++count)
        faces += "\U0001f600";
    EXPECT_FALSE(shownLine(faces).contains(QChar::ReplacementCharacter));
    EXPECT_TRUE(shownLine(faces).isValidUtf16());
}

TEST(ShownTextTest, breaksOnlyWordsThatAreTooLong) {
    EXPECT_EQ(breakable(QStringLiteral("Offline · waiting for grace period")),
              QStringLiteral("Offline · waiting for grace period"));
    EXPECT_EQ(breakable(QStringLiteral("see 0123456789012345678 now")),
              QStringLiteral("see 012345\u200b678901\u200b234567\u200b8 now"));
    EXPECT_TRUE(breakable(QStringLiteral("\U0001f600").repeated(40)).isValidUtf16());
    EXPECT_EQ(breakable({}), QString());
}

TEST(ShownTextTest, writesNoToolTipThatCouldBeMarkup) {
    EXPECT_EQ(plainToolTip({}), QString());
    EXPECT_EQ(plainToolTip(QStringLiteral("<img src=x>")), QStringLiteral("<span>&lt;img src=x&gt;</span>"));
}

TEST(DurationTextTest, namesTheTwoLargestUnits) {
    const auto text = [](double seconds) { return durationText(seconds).toStdString(); };
    EXPECT_EQ(text(0), "0 seconds");
    EXPECT_EQ(text(1), "1 second");
    EXPECT_EQ(text(59.6), "1 minute");
    EXPECT_EQ(text(90), "1 minute 30 seconds");
    EXPECT_EQ(text(3600), "1 hour");
    EXPECT_EQ(text(7384), "2 hours 3 minutes");
    EXPECT_EQ(text(172'800), "2 days");
    EXPECT_EQ(text(-5), "0 seconds");
    EXPECT_EQ(text(1e300), "Never");
    EXPECT_EQ(text(std::numeric_limits<double>::quiet_NaN()), "Never");
}

} // namespace
} // namespace nightjar
