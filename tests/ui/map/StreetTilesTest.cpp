// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/support/EventLoop.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/ui/map/TileServer.h"
#include "ui/map/MapTiles.h"

#include <QTimer>

#include <gmock/gmock.h>

#include <algorithm>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;
using ::testing::Not;
using testing::tileBytes;
using testing::TileServer;

constexpr TileKey somewhere{10, 526, 337};

class StreetTilesTest : public ::testing::Test {
protected:
    StreetTilesTest() {
        settings.streetTemplate = server.urlTemplate();
        settings.cacheFolder = QString::fromStdString((folder.path() / "tiles").string());
        settings.isStreetMapEnabled = true;
        settings.retryAfter = 60s;
    }

    static bool isShown(MapTiles& tiles, const TileKey& key, TileLook look = {}) {
        tiles.beginFrame(look);
        const auto pieces = tiles.detail(key, look, MapTiles::Asking::yes);
        return !pieces.empty() && pieces.front().isWhole;
    }

    static bool appears(MapTiles& tiles, const TileKey& key, TileLook look = {}) {
        return runEventsUntil([&] { return isShown(tiles, key, look); });
    }

    /// Whether the answer was judged, seen by the turn of the next tile, and nothing of it was shown.
    bool staysAway(const QByteArray& wrong) {
        server.answer = [wrong](const QByteArray& request) {
            return request.contains("/3/1/1.png") ? TileServer::ok(tileBytes()) : wrong;
        };
        settings.maximumParallel = 1;
        MapTiles tiles(settings);
        bool wasShown = false;
        const bool isOver = runEventsUntil([&] {
            wasShown = wasShown || isShown(tiles, somewhere);
            return isShown(tiles, {3, 1, 1});
        });
        return isOver && !wasShown && !isShown(tiles, somewhere);
    }

    bool hasAsked(const char* what) const {
        return std::ranges::any_of(server.requests,
                                   [what](const QByteArray& each) { return each.contains(what); });
    }

    testing::TemporaryFolder folder;
    TileServer server;
    MapTileSettings settings;
};

TEST_F(StreetTilesTest, nothingIsAskedForWithoutConsentAndNothingMoreAfterItIsTakenBack) {
    settings.isStreetMapEnabled = false;
    MapTiles tiles(settings);
    EXPECT_FALSE(tiles.hasDetail());
    ASSERT_TRUE(runEventsUntil([&] {
        EXPECT_FALSE(isShown(tiles, somewhere));
        return !tiles.builtIn({2, 1, 1}, {}).empty();
    }));
    EXPECT_EQ(server.connections, 0);

    tiles.setStreetMapEnabled(true);
    ASSERT_TRUE(appears(tiles, somewhere));
    EXPECT_THAT(tiles.attribution().toStdString(), HasSubstr("OpenStreetMap"));
    const auto asked = server.requests.size();
    tiles.setStreetMapEnabled(false);
    ASSERT_TRUE(runEventsUntil([&] {
        EXPECT_FALSE(isShown(tiles, {10, 527, 337}));
        return !tiles.builtIn({2, 2, 1}, {}).empty();
    }));
    EXPECT_EQ(server.requests.size(), asked);
}

TEST_F(StreetTilesTest, aTileIsAskedForByNameAndKeptForTheNextStart) {
    server.answer = [](const QByteArray&) {
        return TileServer::ok(tileBytes(),
                              "Content-Type: image/png\r\nCache-Control: no-cache, max-age=0\r\n");
    };
    {
        MapTiles tiles(settings);
        ASSERT_TRUE(appears(tiles, somewhere));
    }
    ASSERT_EQ(server.requests.size(), 1U);
    EXPECT_THAT(server.requests[0].toStdString(), HasSubstr("GET /10/526/337.png HTTP/1.1"));
    EXPECT_THAT(server.requests[0].toStdString(), HasSubstr("User-Agent: Nightjar/0.1 desktop"));
    EXPECT_THAT(server.requests[0].toLower().toStdString(), Not(HasSubstr("cookie")));

    MapTiles again(settings);
    EXPECT_TRUE(appears(again, somewhere));
    EXPECT_EQ(server.requests.size(), 1U);
}

TEST_F(StreetTilesTest, anExpiredTileIsAskedForByItsTag) {
    settings.minimumAge = -10s;
    server.answer = [](const QByteArray& request) {
        return request.contains("If-None-Match: \"first\"")
                   ? TileServer::status(304)
                   : TileServer::ok(tileBytes(), "Content-Type: image/png\r\nETag: \"first\"\r\nExpires: "
                                                 "Thu, 01 Jan 1970 00:00:00 GMT\r\n");
    };
    for (int start = 0; start < 2; ++start) {
        MapTiles tiles(settings);
        ASSERT_TRUE(appears(tiles, somewhere)) << start;
    }
    ASSERT_EQ(server.requests.size(), 2U);
    EXPECT_THAT(server.requests[1].toStdString(), HasSubstr("If-None-Match"));
}

TEST_F(StreetTilesTest, whatIsNoTileIsNeverShownNorKept) {
    const QByteArray tile = tileBytes();
    const std::vector<QByteArray> wrong{
        TileServer::ok("<html>Please log in</html>", "Content-Type: text/html\r\n"),
        TileServer::ok("<html>Please log in</html>"),
        TileServer::ok(QByteArray(3 << 20, 'x')),
        TileServer::ok(tileBytes("png", {4096, 4096})),
        TileServer::ok(tileBytes("png", {256, 512})),
        TileServer::ok(tileBytes("bmp")),
        TileServer::ok(tile.left(tile.size() / 2)),
        TileServer::ok({}),
        TileServer::status(404),
        "no HTTP at all\r\n\r\n",
    };
    for (std::size_t i = 0; i < wrong.size(); ++i) {
        EXPECT_TRUE(staysAway(wrong[i])) << i;
    }

    server.answer = [](const QByteArray&) { return TileServer::ok(tileBytes()); };
    MapTiles tiles(settings);
    EXPECT_TRUE(appears(tiles, somewhere));
}

TEST_F(StreetTilesTest, redirectsStayOnTheSameKindOfRoad) {
    const QByteArray port = QByteArray::number(server.serverPort());
    EXPECT_TRUE(staysAway(TileServer::status(302, "Location: https://127.0.0.1:" + port + "/moved\r\n")));
    EXPECT_FALSE(hasAsked("moved"));
    EXPECT_TRUE(staysAway(TileServer::status(302, "Location: http://192.0.2.1/moved\r\n")));
    EXPECT_TRUE(staysAway(TileServer::status(302, "Location: /again\r\n")));

    server.answer = [](const QByteArray& request) {
        return request.contains("/moved") ? TileServer::ok(tileBytes())
                                          : TileServer::status(302, "Location: /moved/tile.png\r\n");
    };
    MapTiles tiles(settings);
    EXPECT_TRUE(appears(tiles, {10, 1, 1}));
}

TEST_F(StreetTilesTest, anAnswerThatTricklesIsGivenUp) {
    settings.timeout = 150ms;
    MapTiles tiles(settings);
    QTimer trickle;
    server.answer = [](const QByteArray&) {
        return QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 9000\r\n\r\n");
    };
    QObject::connect(&trickle, &QTimer::timeout, [&] { server.releaseWaiting("\x89"); });
    trickle.start(20);
    ASSERT_TRUE(runEventsUntil([&] {
        EXPECT_FALSE(isShown(tiles, somewhere));
        return server.connections > 0 && server.open == 0;
    }));
}

TEST_F(StreetTilesTest, onlyTwoAreUnderWayAtATime) {
    server.answer = [](const QByteArray&) { return QByteArray(); };
    MapTiles tiles(settings);
    const auto lookAtAll = [&] {
        tiles.beginFrame({});
        int shown = 0;
        for (int column = 0; column < 6; ++column) {
            const auto pieces = tiles.detail({10, column, 300}, {}, MapTiles::Asking::yes);
            shown += !pieces.empty() && pieces.front().isWhole ? 1 : 0;
        }
        return shown;
    };
    int most = 0;
    ASSERT_TRUE(runEventsUntil([&] {
        const int shown = lookAtAll();
        most = std::max(most, server.waiting);
        if (server.waiting == 2)
            server.releaseWaiting(TileServer::ok(tileBytes()));
        return shown == 6;
    }));
    EXPECT_EQ(most, 2);
    EXPECT_EQ(server.requests.size(), 6U);
}

TEST_F(StreetTilesTest, aServerThatRefusesIsLeftAloneForAWhileAndThenAskedAgain) {
    settings.retryAfter = 100ms;
    server.answer = [](const QByteArray&) { return TileServer::status(429); };
    MapTiles tiles(settings);
    int told = 0;
    QObject::connect(&tiles, &MapTiles::changed, [&] { ++told; });
    ASSERT_TRUE(runEventsUntil([&] {
        if (told == 0)
            for (int column = 0; column < 30; ++column)
                (void)isShown(tiles, {10, column, 300});
        return told > 0;
    }));
    EXPECT_LE(server.requests.size(), 2U);

    server.answer = [](const QByteArray&) { return TileServer::ok(tileBytes()); };
    EXPECT_TRUE(appears(tiles, {10, 5, 300}));
}

TEST_F(StreetTilesTest, inTheDarkLightAndDarkChangePlaces) {
    server.answer = [](const QByteArray&) {
        return TileServer::ok(tileBytes("png", {256, 256}, 0xfff2f0e8));
    };
    MapTiles tiles(settings);
    const TileLook dark{true, false};
    ASSERT_TRUE(appears(tiles, somewhere, dark));
    const QColor color =
        tiles.detail(somewhere, dark, MapTiles::Asking::no).front().image.pixelColor(100, 100);
    EXPECT_LT(color.lightness(), 64);
    EXPECT_FALSE(isShown(tiles, somewhere)) << "the dark one in the light";
}

TEST(StreetTemplateTest, onlyUsableAddressesAreTaken) {
    for (const auto* good : {"https://tiles.example/{z}/{x}/{y}.png", "http://localhost:8080/{z}/{x}/{y}",
                             "https://tiles.example/a?x={x}&y={y}&z={z}"})
        EXPECT_TRUE(StreetTiles::check(QString::fromUtf8(good))) << good;
    for (const auto* bad : {"", "http://tiles.example/{z}/{x}/{y}.png", "https://tiles.example/{z}/{x}.png",
                            "file:///{z}/{x}/{y}", "https://{s}.tiles.example/{z}/{x}/{y}",
                            "https:///{z}/{x}/{y}", "https://tiles.example/{z}/{x}/{y}/{y}"})
        EXPECT_FALSE(StreetTiles::check(QString::fromUtf8(bad))) << bad;
}

} // namespace
} // namespace nightjar
