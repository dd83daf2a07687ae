// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/base/Date.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace nightjar {
namespace {

TEST(Date, readsDateTimesWithAZone) {
    const struct {
        const char* text;
        double unix;
    } cases[] = {
        {"1970-01-01T00:00:00Z", 0},
        {"2001-01-01T00:00:00Z", 978'307'200},
        {"2025-05-01T12:34:56Z", 1'746'102'896},
        {"2025-05-01T14:34:56+02:00", 1'746'102'896},
        {"2025-05-01T14:34:56+0200", 1'746'102'896},
        {"2025-05-01T07:04:56-05:30", 1'746'102'896},
        {"2024-02-29T23:59:59Z", 1'709'251'199},
        {"1969-12-31T23:59:59Z", -1},
        {"0001-01-01T00:00:00Z", -62'135'596'800},
        {"9999-12-31T23:59:59Z", 253'402'300'799},
    };
    for (const auto& [text, unix] : cases)
        EXPECT_EQ(dateFromIso8601(text), dateFromUnixSeconds(unix)) << text;
}

TEST(Date, refusesEveryOtherForm) {
    for (const char* text : {"",
                             "2025-05-01",
                             "2025-05-01T12:34:56",
                             "2025-05-01T12:34:56.5Z",
                             "2025-05-01T12:34:56,5Z",
                             "2025-05-01T12:34Z",
                             "2025-05-01 12:34:56Z",
                             "2025-05-01t12:34:56Z",
                             "2025-05-01T12:34:56z",
                             "2025-05-01T12:34:56Z ",
                             " 2025-05-01T12:34:56Z",
                             "2025-05-01T12:34:56+02",
                             "2025-05-01T12:34:56+2:00",
                             "2025-05-01T12:34:56+24:00",
                             "2025-05-01T12:34:56+02:60",
                             "2025-05-01T12:34:56+02.00",
                             "2025-05-01T12:34:56 02:00",
                             "2025-05-01T12:34:56UTC",
                             "2025-13-01T12:34:56Z",
                             "2025-00-01T12:34:56Z",
                             "2025-05-00T12:34:56Z",
                             "2025-02-29T12:34:56Z",
                             "2100-02-29T12:34:56Z",
                             "2025-05-01T24:00:00Z",
                             "2025-05-01T12:60:00Z",
                             "2025-05-01T12:34:60Z",
                             "2025-05-01T1a:34:56Z",
                             "2025-05-01T-1:34:56Z",
                             "+025-05-01T12:34:56Z",
                             "20250501T123456Z",
                             "12025-05-01T12:34:56Z",
                             "2025-05-01T12:3\xB4:56Z",
                             "0000-12-31T23:59:59Z",
                             "0001-01-01T00:00:00+00:01",
                             "9999-12-31T23:59:59-00:01"}) {
        EXPECT_FALSE(dateFromIso8601(text)) << text;
    }
}

TEST(Date, writesWholeSecondsCuttingOffFractions) {
    EXPECT_EQ(iso8601Text(dateFromUnixSeconds(1'746'102'896.999)), "2025-05-01T12:34:56Z");
    EXPECT_EQ(iso8601Text(dateFromUnixSeconds(-0.25)), "1969-12-31T23:59:59Z");
    EXPECT_EQ(iso8601Text(distantPast), "0001-01-01T00:00:00Z");
    EXPECT_EQ(iso8601Text(Date{}), "2001-01-01T00:00:00Z");
}

TEST(Date, hasNoTextOutsideTheYears1To9999) {
    for (const double unix : {-62'135'596'800.5, 253'402'300'800.0, 1e300, -1e300,
                              std::numeric_limits<double>::infinity(), std::nan("")}) {
        EXPECT_FALSE(iso8601Text(dateFromUnixSeconds(unix))) << unix;
    }
}

TEST(Date, readsBackWhatItWrites) {
    std::mt19937_64 random(20);
    std::uniform_int_distribution<std::int64_t> seconds(-62'135'596'800, 253'402'300'799);
    for (int i = 0; i < 20'000; ++i) {
        const auto date = dateFromUnixSeconds(static_cast<double>(seconds(random)));
        ASSERT_EQ(dateFromIso8601(iso8601Text(date).value()), date);
    }
}

} // namespace
} // namespace nightjar
