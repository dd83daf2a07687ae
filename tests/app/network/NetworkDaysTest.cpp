// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/app/network/NetworkDay.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace nightjar {
namespace {

using namespace nightjar::testing;

std::string text(const std::vector<Alert>& alerts) {
    std::string all;
    for (const Alert& alert : alerts)
        all += "  " + std::to_string(alert.at) + " device " + std::to_string(alert.device) +
               (alert.isReturn ? " returned\n" : " left\n");
    return all;
}

std::string story(const NetworkDay& day) {
    constexpr std::array<const char*, 12> names{"told",         "start",   "stop",    "track",
                                                "stopTracking", "forget",  "alertOn", "alertOff",
                                                "delay",        "waiting", "ready",   "clockSet"};
    std::string all;
    for (const Event& event : day.events)
        all += "  " + std::to_string(event.at) + ' ' + names[static_cast<std::size_t>(event.what)] +
               " device " + std::to_string(event.device) + " value " + std::to_string(event.value) + " set " +
               std::to_string(event.set) + '\n';
    return all;
}

/// The number of departures that were told of.
int judgeDay(std::uint32_t seed, bool tellsStory) {
    auto day = liveThroughNetworkDay(seed);
    std::ranges::sort(day.alerts);
    const auto due = judge(day);
    EXPECT_EQ(text(day.alerts), text(due.alerts));
    EXPECT_EQ(day.atTheEnd, due.atTheEnd);
    EXPECT_EQ(text(falseAlarms(day)), "");
    if (::testing::Test::HasFailure())
        ADD_FAILURE() << "replay with NIGHTJAR_SEED=" << seed << (tellsStory ? '\n' + story(day) : "");
    return static_cast<int>(std::ranges::count(day.alerts, false, &Alert::isReturn));
}

constexpr std::uint32_t daysInPart = 1250;

class NetworkDaysTest : public ::testing::TestWithParam<std::uint32_t> {};

TEST_P(NetworkDaysTest, everyDepartureAndEveryReturnIsToldOnceAndInTime) {
    int departures = 0;
    for (std::uint32_t i = 0; i < daysInPart && !HasFailure(); ++i)
        departures += judgeDay(GetParam() * daysInPart + i, false);
    // The days are worth living through only when much happens in them.
    EXPECT_GT(departures, static_cast<int>(daysInPart) * 2);
}

INSTANTIATE_TEST_SUITE_P(TenThousandDays, NetworkDaysTest, ::testing::Range(0U, 8U));

TEST(NetworkDayReplayTest, theDayOfNightjarSeed) {
    const char* seed = std::getenv("NIGHTJAR_SEED");
    if (!seed)
        GTEST_SKIP() << "for replaying one day";
    judgeDay(static_cast<std::uint32_t>(std::strtoul(seed, nullptr, 10)), true);
}

} // namespace
} // namespace nightjar
