// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/ui/map/TileServer.h"
#include "ui/map/BuiltInMap.h"
#include "ui/map/LabelLayout.h"
#include "ui/map/MapFurniture.h"
#include "ui/map/MapMarker.h"
#include "ui/map/TileCache.h"
#include "ui/map/TilePicture.h"
#include "ui/map/TileQueue.h"
#include "ui/map/TrailLine.h"

#include <QResource>

#include <gmock/gmock.h>

#include <cmath>
#include <random>

namespace nightjar {
namespace {

using ::testing::ElementsAre;

TEST(LabelLayoutTest, labelsYieldToDiscsAndToThoseBeforeThem) {
    const std::vector<QRectF> labels{{0, 0, 50, 10}, {40, 5, 50, 10}, {95, 0, 50, 10}, {0, 100, 50, 10}};
    const std::vector<QRectF> discs{{10, 95, 26, 26}};
    EXPECT_THAT(labelsThatFit(labels, discs, 0), ElementsAre(true, false, true, false));
    EXPECT_THAT(labelsThatFit(labels, discs, 2), ElementsAre(true, true, true, false));
}

TEST(PlainLineTest, hostileTitlesBecomeOneShortLine) {
    EXPECT_EQ(plainLine(QStringLiteral(" a\nb\tc") + QChar(0) + QChar(0x202e) + u'd', 100),
              QStringLiteral("a b c d"));
    EXPECT_EQ(plainLine(QString(10'000, u'w'), 200).size(), 200);
    EXPECT_EQ(plainLine(QStringLiteral("🦊🦊"), 3), QStringLiteral("🦊"));
    EXPECT_EQ(plainLine(QStringLiteral("שלום"), 100), QStringLiteral("שלום"));
}

TEST(TileCacheTest, theUnusedLongestGoFirstAndWhatIsInViewStays) {
    QImage picture(256, 256, QImage::Format_RGB32);
    TileCache cache(10 * picture.sizeInBytes());
    for (int column = 0; column < 30; ++column)
        cache.insert({8, column, 0}, picture);
    EXPECT_EQ(cache.bytes(), 30 * picture.sizeInBytes());

    for (int frame = 0; frame < 6; ++frame) {
        cache.beginFrame();
        (void)cache.find({8, 7, 0});
    }
    cache.insert({8, 50, 0}, picture);
    EXPECT_LE(cache.bytes(), 10 * picture.sizeInBytes());
    EXPECT_TRUE(cache.contains({8, 7, 0}));
    EXPECT_TRUE(cache.contains({8, 50, 0}));
}

TEST(TileQueueTest, whatLeftTheViewBeforeItsTurnIsDropped) {
    TileQueue queue(1);
    queue.want({1, 0, 0});
    queue.want({1, 1, 0});
    EXPECT_EQ(queue.start(), (TileKey{1, 0, 0}));
    EXPECT_EQ(queue.start(), std::nullopt);
    for (int frame = 0; frame < 5; ++frame) {
        queue.beginFrame();
        queue.want({1, 1, 1});
    }
    queue.finish({1, 0, 0});
    EXPECT_EQ(queue.start(), (TileKey{1, 1, 1}));
    queue.finish({1, 1, 1});
    EXPECT_EQ(queue.start(), std::nullopt);
}

class BuiltInMapTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!map.hasLand())
            GTEST_SKIP() << "built without the outlines";
    }

    /// Whether the tile of a zoom shows more land than water just there; a line may run through.
    [[nodiscard]] bool isLand(const MapCoordinate& place, int zoom) const {
        const QPointF at = mercator::project(place) * std::exp2(zoom);
        const TileKey key{zoom, int(at.x()), int(at.y())};
        const QPoint inside(int((at.x() - key.column) * 256), int((at.y() - key.row) * 256));
        const QImage tile = map.draw(key, 256, false);
        int balance = 0;
        for (int x = std::max(0, inside.x() - 2); x <= std::min(255, inside.x() + 2); ++x) {
            for (int y = std::max(0, inside.y() - 2); y <= std::min(255, inside.y() + 2); ++y) {
                balance += tile.pixelColor(x, y) == Colors::light().land ? 1 : 0;
                balance -= tile.pixelColor(x, y) == Colors::light().water ? 1 : 0;
            }
        }
        return balance > 0;
    }

    BuiltInMap map;
};

TEST_F(BuiltInMapTest, landAndWaterAreWhereTheyAreAtEveryZoom) {
    for (const int zoom : {0, 1, 2, 4, 5, 6, 9, 14, 20}) {
        for (const MapCoordinate& land :
             {MapCoordinate{51.0312, 10.3713}, {-24.3123, 134.2123}, {-84.7123, 63.1}})
            EXPECT_TRUE(isLand(land, zoom)) << zoom << ' ' << land.latitude;
        for (const MapCoordinate& both : {MapCoordinate{66.0312, -173.0312}, {67.1312, 178.3712}})
            EXPECT_TRUE(zoom < 4 || isLand(both, zoom)) << zoom << ' ' << both.latitude;
        for (const MapCoordinate& water :
             {MapCoordinate{41.1, -33.7}, {-44.3, -179.87}, {-44.3, 179.87}, {84.1, 11.3}})
            EXPECT_FALSE(isLand(water, zoom)) << zoom << ' ' << water.latitude;
    }
}

TEST_F(BuiltInMapTest, damagedOutlinesAreNoDanger) {
    const QResource resource(QStringLiteral(":/map/land.bin"));
    const QByteArray whole(reinterpret_cast<const char*>(resource.data()), qsizetype(resource.size()));
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        QByteArray damaged =
            whole.left(round % 2 ? whole.size() : qsizetype(random() % std::size_t(whole.size())));
        for (int hit = 0; hit < 200 && damaged.size() > 12; ++hit)
            damaged[qsizetype(random() % std::size_t(hit % 4 ? damaged.size() : 64))] = char(random());
        const LandOutlines land(damaged);
        for (const TileKey& key : {TileKey{0, 0, 0}, {3, 4, 2}, {6, 33, 21}, {12, 2101, 1350}})
            for (const QPolygonF& ring : land.around(key))
                EXPECT_LE(ring.size(), whole.size());
    }
}

TEST(TilePictureTest, theNightKeepsTheHue) {
    QImage paper(2, 1, QImage::Format_RGB32);
    paper.setPixel(0, 0, 0xffaad3df); // water
    paper.setPixel(1, 0, 0xff333333); // a word
    const QImage night = TilePicture::forNight(paper);
    EXPECT_NEAR(night.pixelColor(0, 0).hslHue(), QColor(0xaad3df).hslHue(), 3);
    EXPECT_LT(night.pixelColor(0, 0).lightness(), 100);
    EXPECT_GT(night.pixelColor(1, 0).lightness(), 150);
}

TEST(TrailLineTest, itIsDrawnWithTheFewPointsThatAreSeen) {
    std::mt19937 random(3);
    std::normal_distribution<double> jitter(0, 0.0001);
    std::vector<MapCoordinate> day;
    for (int i = 0; i < 10'000; ++i)
        day.push_back({52 + 0.05 * std::sin(i / 800.0) + jitter(random), 5 + 0.00001 * i + jitter(random)});
    day[5000] = {std::nan(""), 5};
    TrailLine trail;
    ASSERT_TRUE(trail.set(day));
    EXPECT_FALSE(trail.set(day));

    const auto pointsAt = [&trail](const QRectF& part, double zoom) {
        qsizetype count = 0;
        for (const QPolygonF& piece : trail.pieces(part, 256 * std::exp2(zoom)))
            count += piece.size();
        return count;
    };
    const QRectF world(0, 0, 1, 1);
    EXPECT_LT(pointsAt(world, 8), 100);
    EXPECT_GT(pointsAt(world, 12), 10);
    EXPECT_LE(pointsAt(world, 18), TrailLine::mostDrawn + 100);
    const QPointF middle = mercator::project(day[4000]);
    const qsizetype near = pointsAt(QRectF(middle, QSizeF(1e-6, 1e-6)), 18);
    EXPECT_GT(near, 1);
    EXPECT_LT(near, 1000);
    EXPECT_EQ(pointsAt(QRectF(0.1, 0.1, 0.1, 0.1), 18), 0);
}

TEST(TrailLineTest, itCrossesTheDateLineTheShortWay) {
    TrailLine trail;
    trail.set({{0, 179}, {0, 179.9}, {0, -179.2}});
    const auto pieces = trail.pieces(QRectF(0.95, 0.4, 0.1, 0.2), 256 * 256);
    ASSERT_EQ(pieces.size(), 1U);
    EXPECT_LT(pieces.front().boundingRect().width(), 0.01);
    EXPECT_EQ(trail.pieces(QRectF(-0.05, 0.4, 0.1, 0.2), 256 * 256).size(), 1U);
}

TEST(ScaleBarTest, itsLengthIsRoundAndFits) {
    for (const double pointsPerMetre : {1e-5, 0.013, 0.5, 3.0, 12.0}) {
        const double length = MapFurniture::roundLength(pointsPerMetre, 110);
        EXPECT_LE(length * pointsPerMetre, 110);
        EXPECT_GT(length * pointsPerMetre, 40 * std::min(1.0, pointsPerMetre < 12 ? 1.0 : 0.1));
    }
}

} // namespace
} // namespace nightjar
