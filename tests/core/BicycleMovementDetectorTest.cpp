// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/mesh/BicycleMovementDetector.h"
#include "core/mesh/MeshMath.h"
#include "tests/support/Builders.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace nightjar {
namespace {

using testing::metresNorth;

constexpr double radius = 75;

class BicycleMovementDetectorTest : public ::testing::Test {
protected:
    /// What a fix so many metres from the parked position says: i(nside), 1 or 2 readings of confirming,
    /// m(oved), -.
    char at(double metres, double afterSeconds) { return tell(metresNorth(metres, Seconds{afterSeconds})); }
    /// The same for the next fix in time.
    char at(double metres) { return at(metres, ++m_time); }

    char tell(const MeshPosition& position) {
        const auto result = m_detector.evaluate(position, m_parked, radius);
        if (const auto* confirming = std::get_if<BicycleMovement::Confirming>(&result))
            return static_cast<char>('0' + confirming->count);
        return "i?m-"[result.index()];
    }

    BicycleMovementDetector m_detector;
    MeshPosition m_parked = metresNorth(0);

private:
    double m_time = 0;
};

TEST_F(BicycleMovementDetectorTest, twoSuccessiveOutsidePositionsAreAMovement) {
    EXPECT_EQ(at(140.6), '1');
    EXPECT_EQ(at(150), 'm');
    EXPECT_EQ(at(160), 'm');
    EXPECT_EQ(at(10), 'i');
    EXPECT_EQ(at(150), '1');
}

TEST_F(BicycleMovementDetectorTest, anInsidePositionStartsTheCountAgain) {
    EXPECT_EQ(at(100), '1');
    EXPECT_EQ(at(20), 'i');
    EXPECT_EQ(at(100), '1');
    EXPECT_EQ(at(101), 'm');
}

TEST_F(BicycleMovementDetectorTest, oldPositionsSayNothing) {
    EXPECT_EQ(at(100, 0), '-');
    EXPECT_EQ(at(200, -60), '-');
    EXPECT_EQ(at(100, 0.001), '1');
    EXPECT_EQ(at(200, -60), '-');
    EXPECT_EQ(at(120, 0.002), 'm');
}

TEST_F(BicycleMovementDetectorTest, theSameCoordinatesCountOnceWhateverTheirTime) {
    EXPECT_EQ(at(100), '1');
    EXPECT_EQ(at(100), '-');
    EXPECT_EQ(at(100), '-');
    EXPECT_EQ(at(101), 'm');
    EXPECT_EQ(at(101), '-');
    EXPECT_EQ(at(100), 'm');
}

TEST_F(BicycleMovementDetectorTest, anOldPositionIsNotRememberedAsTheLast) {
    EXPECT_EQ(at(100, -1), '-');
    EXPECT_EQ(at(100, 1), '1');
}

TEST_F(BicycleMovementDetectorTest, exactlyAtTheRadiusIsInside) {
    const auto position = metresNorth(75, Seconds{1});
    const double distance = MeshMath::distanceMeters(m_parked, position);
    const double justLess = std::nextafter(distance, 0);
    EXPECT_EQ(m_detector.evaluate(position, m_parked, distance),
              BicycleMovementResult(BicycleMovement::Inside{distance}));
    m_detector.reset();
    EXPECT_EQ(m_detector.evaluate(position, m_parked, justLess),
              BicycleMovementResult(BicycleMovement::Confirming{distance, 1, 2}));
}

TEST_F(BicycleMovementDetectorTest, resetForgetsTheCountAndTheLastCoordinates) {
    EXPECT_EQ(at(100), '1');
    m_detector.reset();
    EXPECT_EQ(at(100), '1');
}

TEST_F(BicycleMovementDetectorTest, fewerThanTwoRequiredPositionsAreRaisedToTwo) {
    for (const int required : {std::numeric_limits<int>::min(), -1, 0, 1, 2})
        EXPECT_EQ(BicycleMovementDetector(required).requiredOutsidePositions(), 2);
    m_detector = BicycleMovementDetector(4);
    EXPECT_EQ(at(100), '1');
    EXPECT_EQ(at(101), '2');
    EXPECT_EQ(at(102), '3');
    EXPECT_EQ(at(103), 'm');
}

} // namespace
} // namespace nightjar
