// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/app/bluetooth/LossRules.h"
#include "tests/app/bluetooth/LossScenario.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace nightjar {
namespace {

using namespace nightjar::testing;

std::vector<Alert> inOrder(std::vector<Alert> alerts) {
    std::ranges::stable_sort(alerts, {},
                             [](const Alert& alert) { return std::pair(alert.at, alert.device); });
    return alerts;
}

std::string story(const Day& day, const std::vector<Alert>& due) {
    std::string text;
    for (const Event& event : day.events)
        text += "  " + toText(event) + '\n';
    text += "posted:\n";
    for (const Alert& alert : inOrder(day.alerts))
        text += "  " + toText(alert) + '\n';
    text += "due:\n";
    for (const Alert& alert : due)
        text += "  " + toText(alert) + '\n';
    return text;
}

struct Outcome {
    int alerts = 0;
    int plainSilences = 0;
};

/// The environment variable NIGHTJAR_SEED replays one day, with its story when that is wrong.
Outcome judgeDay(std::uint32_t seed, bool tellsStory) {
    const Day day = liveThrough(seed);
    const auto due = alertsDue(day);
    const auto silences = judgePlainSilences(day);
    const auto hint = "replay with NIGHTJAR_SEED=" + std::to_string(seed) +
                      (tellsStory ? '\n' + story(day, due) : std::string());
    EXPECT_TRUE(inOrder(day.alerts) == due) << hint;
    EXPECT_EQ(silences.fault.value_or("none"), "none") << hint;
    EXPECT_EQ(day.textsSent, day.textsExpected) << hint;
    return {static_cast<int>(day.alerts.size()), silences.count};
}

constexpr std::uint32_t daysInPart = 1250;

class LossScenariosTest : public ::testing::TestWithParam<std::uint32_t> {};

TEST_P(LossScenariosTest, everyLossAndEveryReturnIsToldOnceAndInTime) {
    Outcome all;
    for (std::uint32_t i = 0; i < daysInPart && !HasFailure(); ++i) {
        const auto day = judgeDay(GetParam() * daysInPart + i, false);
        all.alerts += day.alerts;
        all.plainSilences += day.plainSilences;
    }
    // The days are worth living through only when much happens in them.
    EXPECT_GT(all.alerts, static_cast<int>(daysInPart) * 4);
    EXPECT_GT(all.plainSilences, static_cast<int>(daysInPart) / 2);
}

INSTANTIATE_TEST_SUITE_P(TenThousandDays, LossScenariosTest, ::testing::Range(0U, 8U));

TEST(LossScenarioReplayTest, theDayOfNightjarSeed) {
    const char* seed = std::getenv("NIGHTJAR_SEED");
    if (!seed)
        GTEST_SKIP() << "for replaying one day";
    judgeDay(static_cast<std::uint32_t>(std::strtoul(seed, nullptr, 10)), true);
}

} // namespace
} // namespace nightjar
