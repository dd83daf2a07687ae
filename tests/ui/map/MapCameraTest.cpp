// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/MapCamera.h"
#include "tests/support/EventLoop.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace nightjar {
namespace {

using ::testing::DoubleNear;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr auto jump = MapCamera::Motion::jump;

bool isSound(const MapCamera& camera) {
    const MapRegion region = camera.region();
    return isOnEarth({region.center.latitude, 0}) && std::isfinite(region.center.longitude) &&
           region.latitudeDelta > 0 && region.latitudeDelta < 171 && region.longitudeDelta > 0 &&
           region.longitudeDelta <= 360.001 && std::isfinite(camera.zoom());
}

void expectNear(const MapRegion& actual, const MapRegion& expected) {
    EXPECT_THAT(actual.center.latitude, DoubleNear(expected.center.latitude, 1e-6));
    EXPECT_THAT(actual.center.longitude, DoubleNear(expected.center.longitude, 1e-6));
    EXPECT_THAT(actual.latitudeDelta, DoubleNear(expected.latitudeDelta, 1e-6));
    EXPECT_THAT(actual.longitudeDelta, DoubleNear(expected.longitudeDelta, 1e-6));
}

TEST(MapGeometryTest, fittingTakesTheMiddleOfTheExtremesAndLeavesRoom) {
    expectNear(regionFitting({{52, 5}, {53, 7}, {52.2, 5.1}}, 0.02), {{52.5, 6}, 1.45, 2.9});
    expectNear(regionFitting({{52, 5}}, 0.02), {{52, 5}, 0.02, 0.02});
    expectNear(regionFitting({{52, 5}, {52.001, 6}}, 0.02), {{52.0005, 5.5}, 0.02, 1.45});
    expectNear(regionFitting({{nan, 5}, {52, 5}, {91, 0}, {0, infinite}, {0, 180.1}}, nan), {{52, 5}, 0, 0});
}

TEST(MapGeometryTest, placesAreWhereTheUsualTileGridHasThem) {
    const QPointF utrecht = mercator::project({52.0907, 5.1214}) * 1024;
    EXPECT_EQ(QPoint(int(utrecht.x()), int(utrecht.y())), QPoint(526, 337));
    for (const MapCoordinate& place : {MapCoordinate{0, 0}, {85, -180}, {-85, 179.5}, {52.1, 5.1}}) {
        const MapCoordinate back = mercator::unproject(mercator::project(place));
        EXPECT_THAT(back.latitude, DoubleNear(place.latitude, 1e-9));
        EXPECT_THAT(back.longitude, DoubleNear(place.longitude, 1e-9));
    }
    EXPECT_EQ(mercator::project({90, 0}).y(), 0);
    EXPECT_EQ(mercator::project({-90, 0}).y(), 1);
    EXPECT_THAT(mercator::unitsPerMetre(60) / mercator::unitsPerMetre(0), DoubleNear(2, 1e-9));
}

class MapCameraTest : public ::testing::Test {
protected:
    MapCameraTest() { camera.setViewSize({760, 640}); }

    MapCamera camera;
};

TEST_F(MapCameraTest, aShownRegionIsSeenInFullAndIsTheSameWhenShownAgain) {
    camera.show({{52.1, 5.1}, 0.4, 0.1}, jump);
    const MapRegion seen = camera.region();
    EXPECT_THAT(seen.latitudeDelta, DoubleNear(0.4, 1e-6));
    EXPECT_GT(seen.longitudeDelta, 0.1);

    for (const MapRegion& wanted : {seen, MapRegion{{60, -170}, 50, 60}, MapRegion{{0, 0}, 170, 360}}) {
        camera.show(wanted, jump);
        const MapRegion first = camera.region();
        camera.show(first, jump);
        expectNear(camera.region(), first);
    }
}

TEST_F(MapCameraTest, hostileRegionsAndPlacesLeaveItSound) {
    for (const double latitude : {-90.0, -89.9, 0.0, 90.0, nan, 1e300})
        for (const double longitude : {-180.0, 0.0, 180.0, nan, -infinite})
            for (const double span : {0.0, 1e-300, 1e-9, 0.02, 493.0, 1e300, infinite, nan, -1.0}) {
                camera.show({{latitude, longitude}, span, span}, jump);
                EXPECT_TRUE(isSound(camera)) << latitude << ' ' << longitude << ' ' << span;
            }
    for (const double steps : {1e9, -1e9, nan, infinite}) {
        camera.zoomAt({0, 0}, steps, jump);
        EXPECT_TRUE(isSound(camera)) << steps;
    }
    camera.pan({1e12, -1e12});
    EXPECT_TRUE(isSound(camera));
    camera.setViewSize({0, 0});
    camera.setViewSize({3000, 10});
    EXPECT_TRUE(isSound(camera));
}

TEST_F(MapCameraTest, zoomingKeepsThePlaceUnderThePointer) {
    camera.show({{52.1, 5.1}, 1, 1}, jump);
    const QPointF pointer(120, 500);
    const QPointF place = camera.toWorld(pointer);

    camera.zoomAt(pointer, 3.3, jump);
    EXPECT_LT((camera.toView(place) - pointer).manhattanLength(), 1e-3);

    camera.zoomAt(pointer, -2, MapCamera::Motion::glide);
    ASSERT_TRUE(runEventsUntil([&] { return !camera.isGliding(); }));
    EXPECT_LT((camera.toView(place) - pointer).manhattanLength(), 1e-3);
}

TEST_F(MapCameraTest, theWorldGoesOnAcrossTheDateLineAndEndsAtThePoles) {
    camera.show({{0, 179}, 10, 10}, jump);
    const QPointF fiji = mercator::project({0, -179});
    const double before = camera.toView(fiji).x();
    EXPECT_GT(before, 380);
    EXPECT_LT(before, 640);

    camera.pan({-200, 0});
    EXPECT_THAT(camera.toView(fiji).x(), DoubleNear(before - 200, 1e-6));
    EXPECT_LT(camera.region().center.longitude, 0);

    camera.pan({0, 1e6});
    EXPECT_THAT(camera.toWorld({0, 0}).y(), DoubleNear(0, 1e-9));
}

TEST_F(MapCameraTest, aFitGlidesThereAndAnswersANewSizeUntilTheUserMoves) {
    camera.show({{52, 5}, 0.5, 0.5}, jump);
    camera.show({{48, 2}, 0.5, 0.5}, MapCamera::Motion::glide);
    EXPECT_THAT(camera.region().center.latitude, DoubleNear(52, 1e-6));
    ASSERT_TRUE(runEventsUntil([&] { return !camera.isGliding(); }));
    EXPECT_THAT(camera.region().center.latitude, DoubleNear(48, 1e-3));

    camera.setViewSize({300, 200});
    EXPECT_THAT(camera.region().latitudeDelta, DoubleNear(0.5, 1e-3));
    camera.pan({1, 0});
    const double zoom = camera.zoom();
    camera.setViewSize({760, 640});
    EXPECT_EQ(camera.zoom(), zoom);
}

} // namespace
} // namespace nightjar
