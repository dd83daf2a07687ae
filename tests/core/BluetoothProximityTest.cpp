// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/bluetooth/BluetoothProximityEstimator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace nightjar {
namespace {

using Band = BluetoothProximityBand;
using Trend = BluetoothProximityTrend;
using Snapshot = BluetoothProximitySnapshot;

/// What the last of the readings says.
std::optional<Snapshot> afterAll(const std::vector<int>& readings, int maximumSamples = 10) {
    BluetoothProximityEstimator estimator(maximumSamples);
    std::optional<Snapshot> latest;
    for (const int rssi : readings)
        latest = estimator.add(rssi);
    return latest;
}

std::vector<int> repeated(std::initializer_list<std::pair<int, int>> countsAndReadings) {
    std::vector<int> readings;
    for (const auto& [count, rssi] : countsAndReadings)
        readings.insert(readings.end(), static_cast<std::size_t>(count), rssi);
    return readings;
}

struct ReadingsCase {
    std::string name;
    std::vector<int> readings;
    Snapshot expected;
    int maximumSamples = 10;
};

class ProximityReadingsTest : public ::testing::TestWithParam<ReadingsCase> {};

TEST_P(ProximityReadingsTest, theLastReadingSays) {
    const auto& [name, readings, expected, maximumSamples] = GetParam();
    EXPECT_TRUE(afterAll(readings, maximumSamples) == expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ProximityReadingsTest,
    ::testing::Values(
        ReadingsCase{"first", {-55}, {-55, -55.0, Trend::acquiring, Band::nearby, 1}},
        ReadingsCase{"evenCountTakesTheMean", {-60, -70}, {-70, -65.0, Trend::acquiring, Band::nearby, 2}},
        ReadingsCase{"halfADecibel", {-78, -79}, {-79, -78.5, Trend::acquiring, Band::weak, 2}},
        ReadingsCase{
            "theFifthIsSteady", {-90, -90, -90, -30, -30}, {-30, -90.0, Trend::steady, Band::weak, 5}},
        ReadingsCase{"outlierDoesNotCount",
                     {-60, -60, -60, -60, -60, -10},
                     {-10, -60.0, Trend::steady, Band::nearby, 6}},
        ReadingsCase{"theOldestAreDropped",
                     repeated({{10, -80}, {5, -60}}),
                     {-60, -60.0, Trend::warmer, Band::nearby, 10}},
        ReadingsCase{"exactlyFourColder",
                     repeated({{5, -60}, {5, -64}}),
                     {-64, -64.0, Trend::colder, Band::nearby, 10}},
        ReadingsCase{
            "threeIsSteady", repeated({{5, -60}, {5, -63}}), {-63, -63.0, Trend::steady, Band::nearby, 10}},
        ReadingsCase{"exactlyFourWarmer",
                     repeated({{5, -82}, {5, -78}}),
                     {-78, -78.0, Trend::warmer, Band::fartherAway, 10}},
        ReadingsCase{"neverFewerThanFour",
                     repeated({{9, -50}}),
                     {-50, -50.0, Trend::acquiring, Band::veryClose, 4},
                     2},
        ReadingsCase{"moreThanTen",
                     repeated({{5, -70}, {35, -40}}),
                     {-40, -40.0, Trend::warmer, Band::veryClose, 40},
                     40},
        ReadingsCase{"limits", {-127, -1}, {-1, -64.0, Trend::acquiring, Band::nearby, 2}}),
    [](const auto& each) { return each.param.name; });

TEST(BluetoothProximityEstimatorTest, aReadingThatSaysNothingLeavesTheOthers) {
    BluetoothProximityEstimator estimator(10);
    ASSERT_TRUE(estimator.add(-60));
    for (const int rssi : {0, 1, 127, -128, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        EXPECT_FALSE(estimator.add(rssi)) << rssi;
    EXPECT_EQ(estimator.add(-60)->sampleCount, 2);
}

TEST(BluetoothProximityEstimatorTest, aCopyGoesItsOwnWay) {
    BluetoothProximityEstimator estimator(10);
    for (int i = 0; i < 9; ++i)
        (void)estimator.add(-80);
    auto copy = estimator;
    EXPECT_EQ(copy.add(-80)->sampleCount, 10);
    estimator.reset();
    const auto first = estimator.add(-40);
    EXPECT_EQ(first->sampleCount, 1);
    EXPECT_EQ(first->trend, Trend::acquiring);
    EXPECT_EQ(copy.add(-80)->smoothedRSSI, -80.0);
}

/// The same in doubles and whole lists, without a thought for speed.
Snapshot plainly(std::vector<double> values, std::size_t maximumSamples) {
    while (values.size() > maximumSamples)
        values.erase(values.begin());
    const auto median = [](std::vector<double> some) {
        std::ranges::sort(some);
        return (some[(some.size() - 1) / 2] + some[some.size() / 2]) / 2;
    };
    const auto few = static_cast<std::ptrdiff_t>(std::min<std::size_t>(values.size(), 5));
    const double smoothed = median({values.end() - few, values.end()});
    Trend trend = Trend::acquiring;
    if (few == 5) {
        const double difference = smoothed - median({values.begin(), values.begin() + 5});
        trend = std::abs(difference) < 4 ? Trend::steady : difference > 0 ? Trend::warmer : Trend::colder;
    }
    return {static_cast<int>(values.back()), smoothed, trend, bluetoothProximityBand(smoothed),
            static_cast<int>(values.size())};
}

TEST(BluetoothProximityEstimatorTest, randomReadingsSayWhatPlainArithmeticSays) {
    std::mt19937 random(7);
    std::uniform_int_distribution reading(-127, -1);
    for (const int maximumSamples : {4, 5, 9, 10, 15, 16, 60}) {
        BluetoothProximityEstimator estimator(maximumSamples);
        std::vector<double> all;
        for (int i = 0; i < 300; ++i) {
            all.push_back(reading(random));
            EXPECT_TRUE(estimator.add(static_cast<int>(all.back())) ==
                        plainly(all, static_cast<std::size_t>(maximumSamples)));
        }
    }
}

TEST(BluetoothProximityTest, theBandsMeetWhereTheySay) {
    EXPECT_EQ(bluetoothProximityBand(-50.0), Band::veryClose);
    EXPECT_EQ(bluetoothProximityBand(-50.5), Band::nearby);
    EXPECT_EQ(bluetoothProximityBand(-65.0), Band::nearby);
    EXPECT_EQ(bluetoothProximityBand(-65.5), Band::fartherAway);
    EXPECT_EQ(bluetoothProximityBand(-78.0), Band::fartherAway);
    EXPECT_EQ(bluetoothProximityBand(-78.5), Band::weak);
}

TEST(BluetoothProximityTest, whatTheFinderSays) {
    struct Row {
        std::string_view rawValue, text, image;
    };
    const std::vector<Row> trends{{"acquiring", "Measuring signal…", "waveform.path.ecg"},
                                  {"warmer", "Warmer · getting closer", "arrow.up.right"},
                                  {"steady", "Farther away", "equal"},
                                  {"colder", "Colder · moving away", "arrow.down.right"}};
    for (const Row& row : trends) {
        const auto trend = bluetoothProximityTrendFromRawValue(row.rawValue);
        ASSERT_TRUE(trend) << row.rawValue;
        EXPECT_EQ(rawValue(*trend), row.rawValue);
        EXPECT_EQ(text(*trend, Band::fartherAway), row.text);
        EXPECT_EQ(systemImage(*trend), row.image);
    }
    const std::vector<Row> bands{{"veryClose", "Very close", {}},
                                 {"nearby", "Nearby", {}},
                                 {"fartherAway", "Farther away", {}},
                                 {"weak", "Weak signal", {}}};
    for (const Row& row : bands) {
        const auto band = bluetoothProximityBandFromRawValue(row.rawValue);
        ASSERT_TRUE(band) << row.rawValue;
        EXPECT_EQ(rawValue(*band), row.rawValue);
        EXPECT_EQ(title(*band), row.text);
    }
    EXPECT_FALSE(bluetoothProximityBandFromRawValue("Nearby"));
    EXPECT_FALSE(bluetoothProximityTrendFromRawValue(""));
}

} // namespace
} // namespace nightjar
