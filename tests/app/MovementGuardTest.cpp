// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ModelRig.h"

#include "core/json/Decoder.h"
#include "core/mesh/MeshJson.h"
#include "core/mesh/MeshMath.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <random>

namespace nightjar {
namespace {

using namespace nightjar::testing;
using std::chrono::seconds;

constexpr std::uint32_t bicycle = 42;

class MovementGuardTest : public ::testing::Test, protected ModelRig {
protected:
    /// The guarded node stands at the marked place, and the clock goes on from there.
    void arm() {
        hear(node(bicycle).named("Bicycle").at(metresNorth(0)));
        model->setGuarded(node(bicycle));
        model->markGuardedPosition();
    }
    /// The next position of the guarded node, a minute after the last; a millimetre further, so that no
    /// rounding decides about whole metres.
    void moveTo(double metres) { moveTo(metresNorth(metres + 0.001, nextMinute())); }
    void moveTo(const MeshPosition& position) { hear(node(bicycle).named("Bicycle").at(position)); }
    Seconds nextMinute() { return m_time += seconds(60); }
    [[nodiscard]] std::size_t alerts() const { return notifications.posted().size(); }
    [[nodiscard]] const std::string& status() const { return model->parkingStatus(); }

private:
    Seconds m_time{0};
};

TEST_F(MovementGuardTest, theSecondNewOutsidePositionAlertsOnce) {
    startConnected();
    arm();
    EXPECT_EQ(status(), "Armed · waiting for movement");

    moveTo(74.9);
    EXPECT_EQ(status(), "Armed · 74 m from parked position");
    moveTo(140.6);
    EXPECT_EQ(status(), "Confirming movement · 1 of 2 readings · 140 m");
    EXPECT_EQ(alerts(), 0U);
    moveTo(160.9);
    EXPECT_EQ(status(), "Movement detected · 160 m from parked position");

    const std::vector<Notification> expected{
        {.identifier = "guarded-device-moved-1746100800.0",
         .title = "Guarded device moved",
         .body = "Two positions place the device outside the marked area. Latest distance: about 160 m.",
         .sound = NotificationSound::critical}};
    EXPECT_EQ(notifications.posted(), expected);

    moveTo(400);
    moveTo(0);
    EXPECT_EQ(status(), "Armed · 0 m from parked position");
    moveTo(300);
    moveTo(310);
    EXPECT_EQ(status(), "Movement detected · 310 m from parked position");
    EXPECT_EQ(alerts(), 1U);

    model->markGuardedPosition();
    EXPECT_EQ(status(), "Armed · waiting for movement");
    moveTo(0);
    moveTo(10);
    EXPECT_EQ(alerts(), 2U);
}

TEST_F(MovementGuardTest, anInsidePositionBeginsTheCountAnew) {
    startConnected();
    arm();

    moveTo(100);
    moveTo(10);
    moveTo(120);

    EXPECT_EQ(status(), "Confirming movement · 1 of 2 readings · 120 m");
    EXPECT_EQ(alerts(), 0U);
}

TEST_F(MovementGuardTest, whatIsOldRepeatedOrOfAnotherNodeIsNoReading) {
    startConnected();
    arm();
    moveTo(100);
    const std::string confirming = "Confirming movement · 1 of 2 readings · 100 m";
    ASSERT_EQ(status(), confirming);

    moveTo(metresNorth(200, Seconds{0}));
    moveTo(metresNorth(200, Seconds{-1}));
    moveTo(metresNorth(100.001, nextMinute()));
    hear(node(43).at(metresNorth(300, nextMinute(), 43)));
    hear(node(bicycle).named("Bicycle"));

    EXPECT_EQ(status(), confirming);
    EXPECT_EQ(alerts(), 0U);
}

TEST_F(MovementGuardTest, aReadingThatIsNowhereNeitherAlertsNorCalms) {
    startConnected();
    arm();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const std::array nowhere{std::pair{200.0, 5.0},      std::pair{-90.1, 5.0},   std::pair{52.0, 181.0},
                             std::pair{nan, 5.0},        std::pair{52.0, nan},    std::pair{infinity, 5.0},
                             std::pair{52.0, -infinity}, std::pair{1e308, -1e308}};

    for (const auto& [latitude, longitude] : nowhere)
        moveTo(positionAt(latitude, longitude, nextMinute()));
    EXPECT_EQ(status(), "Armed · waiting for movement");

    moveTo(100);
    for (const auto& [latitude, longitude] : nowhere)
        moveTo(positionAt(latitude, longitude, nextMinute()));
    EXPECT_EQ(alerts(), 0U);
    moveTo(110);
    EXPECT_EQ(alerts(), 1U);
}

TEST_F(MovementGuardTest, theOtherSideOfTheEarthIsOutside) {
    startConnected();
    const auto home = positionAt(-65.28558481951552, -87.34564198057565);
    hear(node(bicycle).at(home));
    model->setGuarded(node(bicycle));
    model->markGuardedPosition();

    moveTo(positionAt(65.28558481951552, 92.65435801942435, nextMinute()));
    EXPECT_EQ(status(), "Confirming movement · 1 of 2 readings · 20015086 m");
}

TEST_F(MovementGuardTest, markingNeedsAGuardedNodeWithAPlace) {
    startConnected();
    const std::string sentence = "The guarded device does not have a position yet.";
    const auto refuses = [&] {
        model->setErrorMessage({});
        model->markGuardedPosition();
        return model->errorMessage() == sentence && !model->parkedPosition() &&
               status() == "No position marked";
    };

    EXPECT_TRUE(refuses()) << "no guarded node";
    preferences.setInteger("guardedNodeID", bicycle);
    EXPECT_TRUE(refuses()) << "an unknown node";
    hear(node(bicycle));
    EXPECT_TRUE(refuses()) << "a node without a position";
    hear(node(bicycle).at(200, 5));
    EXPECT_TRUE(refuses()) << "a position that is nowhere";

    EXPECT_FALSE(preferences.contains("parkedPosition"));
    EXPECT_EQ(notifications.permissionRequests(), 0);
}

TEST_F(MovementGuardTest, markingIsKeptAndAsksForPermission) {
    startConnected();
    arm();

    EXPECT_EQ(notifications.permissionRequests(), 1);
    const auto data = preferences.data("parkedPosition");
    ASSERT_TRUE(data);
    const std::string json(data->begin(), data->end());
    EXPECT_THAT(json, ::testing::HasSubstr(R"("timestamp":767793600)"));
    EXPECT_EQ(json::Decoder(json::DateForm::secondsSince2001).decode<MeshPosition>(json),
              model->parkedPosition());

    start();
    EXPECT_EQ(status(), "Armed · waiting for movement");
    EXPECT_EQ(model->parkedPosition()->latitude, 52);

    model->clearParking();
    EXPECT_EQ(status(), "No position marked");
    start();
    EXPECT_EQ(status(), "No position marked");
    EXPECT_FALSE(model->parkedPosition());
}

TEST_F(MovementGuardTest, afterARestartTheSameMovementAlertsAgain) {
    startConnected();
    arm();
    moveTo(100);
    moveTo(110);
    ASSERT_EQ(alerts(), 1U);

    startConnected();
    moveTo(100);
    EXPECT_EQ(alerts(), 1U);
    moveTo(110);
    EXPECT_EQ(alerts(), 2U);
}

TEST_F(MovementGuardTest, anotherGuardedNodeIsMeasuredFromTheSameMark) {
    startConnected();
    arm();
    hear(node(43));
    model->setGuarded(node(43));
    EXPECT_EQ(model->selectedNodeID(), 43U);

    moveTo(100);
    EXPECT_EQ(status(), "Armed · waiting for movement");
    hear(node(43).at(metresNorth(500.5, nextMinute(), 43)));
    EXPECT_EQ(status(), "Confirming movement · 1 of 2 readings · 500 m");

    model->clearGuardedDevice();
    EXPECT_EQ(model->guardedNodeID(), std::nullopt);
    EXPECT_EQ(status(), "No position marked");
    EXPECT_EQ(model->selectedNodeID(), 43U);
    hear(node(43).at(metresNorth(600, nextMinute(), 43)));
    EXPECT_EQ(status(), "No position marked");
}

TEST_F(MovementGuardTest, radiusAndProfileAreKeptAsTheyAreGiven) {
    startConnected();
    EXPECT_EQ(model->parkingRadius(), 75);
    EXPECT_EQ(preferences.number("parkingRadius"), 75);

    model->setParkingRadius(500);
    model->setGuardProfile(GuardProfile::bicycle);
    startConnected();
    EXPECT_EQ(model->parkingRadius(), 500);
    EXPECT_EQ(model->guardProfile(), GuardProfile::bicycle);

    arm();
    moveTo(490);
    EXPECT_EQ(status(), "Armed · 490 m from parked position");
    model->setParkingRadius(100);
    EXPECT_EQ(status(), "Armed · 490 m from parked position");
    moveTo(491);
    moveTo(492);
    ASSERT_EQ(alerts(), 1U);
    EXPECT_EQ(notifications.posted().back().title, "Bicycle moved");
}

TEST_F(MovementGuardTest, noRadiusBlindsTheGuardByBeingNoNumber) {
    startConnected();
    arm();

    model->setParkingRadius(std::numeric_limits<double>::quiet_NaN());
    EXPECT_TRUE(std::isnan(model->parkingRadius()));
    moveTo(70);
    EXPECT_EQ(status(), "Armed · 70 m from parked position");
    moveTo(100);
    moveTo(110);
    EXPECT_EQ(alerts(), 1U);

    start();
    EXPECT_EQ(model->parkingRadius(), 75);
}

TEST_F(MovementGuardTest, restoresWhatIsUsableAndIgnoresTheRest) {
    preferences.setString("parkingRadius", "100");
    preferences.setString("guardProfile", "car");
    preferences.setString("guardedNodeID", "42");
    preferences.setInteger("bikeNode", 42);
    const std::string broken = R"({"id":"x"})";
    preferences.setData("parkedPosition", {broken.begin(), broken.end()});

    start();

    EXPECT_EQ(model->parkingRadius(), 75);
    EXPECT_EQ(model->guardProfile(), GuardProfile::general);
    EXPECT_EQ(model->guardedNodeID(), std::nullopt);
    EXPECT_EQ(preferences.string("guardedNodeID"), "42")
        << "something is there, so the former key says nothing";
    EXPECT_EQ(status(), "No position marked");
}

TEST_F(MovementGuardTest, numbersThatNameNoNodeGuardNone) {
    start();
    for (const double number : {-1.0, 4294967296.0, 0.5, 1e300}) {
        preferences.setNumber("guardedNodeID", number);
        EXPECT_EQ(model->guardedNodeID(), std::nullopt) << number;
    }
    preferences.setInteger("guardedNodeID", 4294967295);
    EXPECT_EQ(model->guardedNodeID(), 4294967295U);
}

TEST_F(MovementGuardTest, takesOverTheBicycleOfAnOlderLayout) {
    preferences.setInteger("bikeNode", 42);
    start();

    EXPECT_EQ(preferences.integer("guardedNodeID"), 42);
    EXPECT_EQ(preferences.string("guardProfile"), "bicycle");
    EXPECT_EQ(model->guardProfile(), GuardProfile::bicycle);
    EXPECT_EQ(preferences.integer("bikeNode"), 42);

    model->setGuardProfile(GuardProfile::general);
    start();
    EXPECT_EQ(model->guardProfile(), GuardProfile::general) << "taken over once";
}

/// Whatever a radio reports: never an alert before two successive new positions outside, always one at the
/// second, and one alert a marking at most.
TEST_F(MovementGuardTest, alertsExactlyOnceAtTheSecondSuccessiveOutsideReading) {
    const auto seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto below = [&random](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    constexpr std::array places{0.0, 30.0, 74.0, 76.0, 120.0, 5000.0};

    startConnected();
    arm();
    MeshPosition parked = *model->parkedPosition();
    MeshPosition last = parked;
    double lastPlace = -1; // the latitude last judged
    int outside = 0;
    std::size_t expected = 0;
    bool alerted = false;
    for (int step = 0; step < 3000; ++step) {
        const auto what = below(40);
        if (what == 0) {
            model->markGuardedPosition();
            parked = last;
            lastPlace = -1;
            outside = 0;
            alerted = false;
            continue;
        }
        if (what == 1) {
            hear(node(43).at(metresNorth(9000, nextMinute(), 43)));
            continue;
        }
        if (what == 2) { // replayed, not newer than the mark
            last = metresNorth(9000, parked.timestamp - startDate - seconds(below(3)));
            moveTo(last);
            continue;
        }
        last = metresNorth(places[static_cast<std::size_t>(below(places.size()))], nextMinute());
        moveTo(last);
        if (lastPlace == last.latitude)
            continue;
        lastPlace = last.latitude;
        outside = MeshMath::distanceMeters(parked, last) > 75 ? outside + 1 : 0;
        if (outside >= 2 && !alerted) {
            alerted = true;
            ++expected;
        }
        ASSERT_EQ(alerts(), expected) << "step " << step;
    }
    EXPECT_GT(expected, 5U);
}

} // namespace
} // namespace nightjar
