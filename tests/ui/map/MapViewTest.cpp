// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/MapView.h"
#include "tests/support/EventLoop.h"

#include <QAccessible>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace nightjar {
namespace {

using ::testing::DoubleNear;
using ::testing::ElementsAre;

MapMarker marker(const char* id, double latitude, double longitude) {
    return {QString::fromUtf8(id),
            {latitude, longitude},
            QString::fromUtf8(id),
            QStringLiteral("bicycle"),
            Tint::blue,
            {}};
}

class MapViewTest : public ::testing::Test {
protected:
    MapViewTest() {
        view.resize(700, 600);
        view.show();
        view.showRegion({{52.1, 5.1}, 0.1, 0.1});
        view.setMarkers({marker("van", 52.11, 5.12), marker("Barn", 52.09, 5.09), marker("fox", 52.1, 5.1)});
    }

    [[nodiscard]] QPoint at(const char* id) const {
        const auto& all = view.markers();
        const auto found = std::ranges::find(all, QString::fromUtf8(id), &MapMarker::id);
        return view.positionOf(found->at).toPoint();
    }

    [[nodiscard]] QAccessibleInterface* accessible() { return QAccessible::queryAccessibleInterface(&view); }

    MapTiles tiles{MapTileSettings{}};
    MapView view{tiles};
    QSignalSpy activated{&view, &MapView::markerActivated};
    QSignalSpy menus{&view, &MapView::markerMenuRequested};
    QSignalSpy regions{&view, &MapView::regionChanged};
};

TEST_F(MapViewTest, readersOfTheScreenFindTheMarkersAndCanChooseThem) {
    MapMarker named = marker("fox", 52.1, 5.1);
    named.accessibleText = QStringLiteral("Fox, moved 5 minutes ago");
    view.setMarkers({marker("van", 52.11, 5.12), named});
    view.setCircle(MapCircle{{52.1, 5.1}, 150, QStringLiteral("Marked position")});
    view.setSelectedMarker(QStringLiteral("van"));

    QAccessibleInterface* map = accessible();
    ASSERT_TRUE(map);
    std::vector<std::string> names;
    for (int i = 0; i < map->childCount(); ++i) {
        names.push_back(map->child(i)->text(QAccessible::Name).toStdString());
        EXPECT_EQ(map->indexOfChild(map->child(i)), i);
    }
    EXPECT_THAT(names, ElementsAre("Fox, moved 5 minutes ago", "van", "Marked position", "Zoom in",
                                   "Zoom out", "Load street map"));

    QAccessibleInterface* van = map->child(1);
    EXPECT_EQ(van->parent(), map);
    EXPECT_TRUE(van->state().selected);
    EXPECT_TRUE(van->rect().contains(view.mapToGlobal(at("van"))));
    EXPECT_EQ(map->childAt(van->rect().center().x(), van->rect().center().y()), van);
    van->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    ASSERT_EQ(activated.size(), 1);
    EXPECT_EQ(activated[0][0].toString(), QStringLiteral("van"));

    view.setMarkers({});
    EXPECT_EQ(map->childCount(), 4);
}

TEST_F(MapViewTest, theKeysReachEveryMarkerAndMoveTheMap) {
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_N);
    EXPECT_EQ(view.keyboardMarker(), QStringLiteral("Barn"));
    QTest::keyClick(&view, Qt::Key_P);
    EXPECT_EQ(view.keyboardMarker(), QStringLiteral("van"));
    QTest::keyClick(&view, Qt::Key_Return);
    ASSERT_EQ(activated.size(), 1);
    EXPECT_EQ(activated[0][0].toString(), QStringLiteral("van"));

    const double longitude = view.region().center.longitude;
    QTest::keyClick(&view, Qt::Key_Right);
    EXPECT_GT(view.region().center.longitude, longitude);
    view.showRegion({{0, 0}, 10, 10});
    QTest::keyClick(&view, Qt::Key_Home);
    ASSERT_TRUE(runEventsUntil([&] { return std::abs(view.region().center.latitude - 52.1) < 1e-3; }));
    for (const char* id : {"van", "Barn", "fox"})
        EXPECT_TRUE(view.rect().contains(at(id)));
}

TEST_F(MapViewTest, aClickChoosesADragMovesAndTheRegionIsToldSoon) {
    QTest::mouseClick(&view, Qt::LeftButton, {}, at("fox"));
    ASSERT_EQ(activated.size(), 1);
    EXPECT_EQ(activated[0][0].toString(), QStringLiteral("fox"));
    EXPECT_TRUE(regions.isEmpty());

    const double latitude = view.region().center.latitude;
    QTest::mousePress(&view, Qt::LeftButton, {}, at("fox"));
    for (int step = 1; step <= 20; ++step)
        QTest::mouseMove(&view, at("fox") + QPoint(0, 6));
    QTest::mouseRelease(&view, Qt::LeftButton, {}, at("fox"));
    EXPECT_EQ(activated.size(), 1) << "a drag is no click";
    EXPECT_GT(view.region().center.latitude, latitude);
    ASSERT_TRUE(runEventsUntil([&] { return !regions.isEmpty(); }));
    EXPECT_EQ(regions.back()[0].value<MapRegion>(), view.region());
    EXPECT_LT(regions.size(), 5);
}

TEST_F(MapViewTest, aRestoredRegionIsNotToldButAFitIs) {
    view.showRegion({{48, 2}, 1, 1});
    view.resize(500, 500);
    view.fitPositions({}, 0.02);
    QTest::keyClick(&view, Qt::Key_A);
    EXPECT_THAT(view.region().center.latitude, DoubleNear(48, 1e-6));

    view.fitPositions({{52.1, 5.1}}, 0.02);
    ASSERT_TRUE(runEventsUntil(
        [&] { return !regions.isEmpty() && std::abs(view.region().latitudeDelta - 0.02) < 1e-6; }));
    EXPECT_THAT(regions[0][0].value<MapRegion>().center.latitude, ::testing::Gt(48));
}

TEST_F(MapViewTest, hostileMarkersCirclesAndTrailsAreDrawnOrLeftOut) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<MapMarker> hostile{marker("nan", nan, 5), marker("far", 52, 1e9), marker("pole", 90, 180),
                                   marker("pole", 1, 1)};
    for (const QString& title :
         {QString(10'000, u'W'), QStringLiteral("a\n<b>b</b>") + QChar(0), QString(5000, QChar(0x202e)),
          QString(300, QChar(0x0301)), QStringLiteral("&amp;<img src='file:///etc/passwd'>")}) {
        hostile.push_back(marker("", 52.1, 5.1));
        hostile.back().id = QString::number(hostile.size());
        hostile.back().title = title;
        hostile.back().symbol = title;
    }
    view.setMarkers(hostile);
    EXPECT_EQ(view.markers().size(), 6U);
    view.setSelectedMarker(QStringLiteral("5"));
    for (const double metres : {0.0, 1e5, 1e12, nan, -5.0, std::numeric_limits<double>::infinity()}) {
        view.setCircle(MapCircle{{52.1, 5.1}, metres, QString(10'000, u'x')});
        view.setTrail({{nan, 0}, {52, 5}, {52.2, 5.2}, {0, metres}});
        for (const double zoom : {0.0001, 1.0, 170.0}) {
            view.showRegion({{52.1, 5.1}, zoom, zoom});
            EXPECT_FALSE(view.grab().isNull());
        }
    }
}

TEST_F(MapViewTest, theStreetMapIsOnlyOfferedUntilItIsThere) {
    auto* offer = view.findChildren<QToolButton*>().last();
    ASSERT_EQ(offer->text(), QStringLiteral("Load street map"));
    QSignalSpy wanted(&view, &MapView::streetMapRequested);
    offer->click();
    EXPECT_EQ(wanted.size(), 1);
    EXPECT_FALSE(tiles.isStreetMapEnabled()) << "the owner asks the user first";
}

/// Time is compared with time on the same machine.
TEST_F(MapViewTest, moreMarkersOrALongTrailStayCheapToPaint) {
    const auto shortest = [&](auto change) {
        qint64 least = std::numeric_limits<qint64>::max();
        for (int i = 0; i < 15; ++i) {
            change(i);
            QElapsedTimer timer;
            timer.start();
            view.grab();
            least = std::min(least, timer.nsecsElapsed());
        }
        return static_cast<double>(least) / 1e6;
    };
    const auto anew = [&](int i) { view.showRegion({{52.1 + i * 1e-4, 5.1}, 0.1, 0.1}); };
    const auto withTrailOf = [&](int points) {
        std::vector<MapCoordinate> day;
        for (int i = 0; i < points; ++i)
            day.push_back(
                {52.1 + 0.03 * std::sin(120.0 * i / points), 5.1 + 0.04 * std::sin(6.0 * i / points)});
        view.setTrail(day);
        return shortest(anew);
    };
    const double thousand = withTrailOf(1'000);
    const double tenThousand = withTrailOf(10'000);
    view.setTrail({});
    EXPECT_LT(tenThousand, 4 * thousand + 2);

    const double plain = shortest(anew);
    std::vector<MapMarker> many;
    for (int i = 0; i < 500; ++i)
        many.push_back(
            marker(std::to_string(i).c_str(), 52.1 + 0.04 * std::sin(i), 5.1 + 0.04 * std::cos(1.7 * i)));
    const double markers = shortest([&](int i) {
        many[std::size_t(i)].at.latitude += 0.001;
        view.setMarkers(many);
    });
    EXPECT_LT(markers, 6 * plain + 5);
}

} // namespace
} // namespace nightjar
