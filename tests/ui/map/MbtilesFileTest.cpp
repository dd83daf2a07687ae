// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/MbtilesFile.h"
#include "tests/support/EventLoop.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/ui/map/TileServer.h"
#include "ui/map/MapTiles.h"

#include <QFile>

#include <sqlite3.h>

#include <gmock/gmock.h>

namespace nightjar {
namespace {

using testing::tileBytes;

constexpr auto tables =
    "CREATE TABLE metadata (name text, value text);"
    "CREATE TABLE tiles (zoom_level integer, tile_column integer, tile_row integer, tile_data blob);";

class MbtilesFileTest : public ::testing::Test {
protected:
    void write(const char* statements, const QByteArray& tile = tileBytes()) {
        sqlite3* database = nullptr;
        ASSERT_EQ(sqlite3_open(path.toUtf8().constData(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(database, statements, nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(database);
        sqlite3_stmt* insert = nullptr;
        // Rows are counted from the south: this is tile 5/17/10, and it has no neighbours.
        if (sqlite3_prepare_v2(database, "INSERT INTO tiles VALUES (5, 17, 21, ?)", -1, &insert, nullptr) ==
            SQLITE_OK) {
            sqlite3_bind_blob(insert, 1, tile.constData(), int(tile.size()), SQLITE_STATIC);
            sqlite3_step(insert);
        }
        sqlite3_finalize(insert);
        sqlite3_close(database);
    }

    QString complaint() const {
        const auto file = MbtilesFile::open(path);
        return file ? QString() : file.error();
    }

    std::optional<std::expected<void, QString>> use(MapTiles& tiles, const std::optional<QString>& name) {
        std::optional<std::expected<void, QString>> told;
        tiles.setLocalFile(name, [&told](std::expected<void, QString> result) { told = result; });
        EXPECT_FALSE(told) << "told before the call came back";
        (void)runEventsUntil([&] { return told.has_value(); });
        return told;
    }

    testing::TemporaryFolder folder;
    QString path = QString::fromStdString((folder.path() / "my map #1 100%?.mbtiles").string());
};

TEST_F(MbtilesFileTest, itsTilesAreShownWithTheirOwnersNameAndMagnifiedBeyondTheLastZoom) {
    write((std::string(tables) +
           "INSERT INTO metadata VALUES ('format', 'png'), ('minzoom', '3'), ('maxzoom', '5'),"
           "('attribution', '<a href=\"https://x.example\">&copy; Map\nmakers</a><script>')")
              .c_str());
    MapTiles tiles(MapTileSettings{});
    const auto told = use(tiles, path);
    ASSERT_TRUE(told && told->has_value()) << (told ? told->error().toStdString() : "nothing");
    EXPECT_EQ(tiles.attribution(), QStringLiteral("© Map makers"));

    for (const TileKey& key : {TileKey{5, 17, 10}, TileKey{8, 140, 83}}) {
        ASSERT_TRUE(runEventsUntil([&] {
            tiles.beginFrame({});
            return !tiles.detail(key, {}, MapTiles::Asking::yes).empty();
        }));
        const TilePiece piece = tiles.detail(key, {}, MapTiles::Asking::yes).front();
        EXPECT_EQ(piece.image.pixel(128, 128), 0xff3366cc);
        EXPECT_EQ(piece.source.width(), key.zoom == 5 ? 256 : 32);
    }

    ASSERT_TRUE(use(tiles, std::nullopt));
    EXPECT_FALSE(tiles.hasDetail());
}

TEST_F(MbtilesFileTest, whatCannotBeShownIsRefusedInOneSentence) {
    EXPECT_EQ(complaint(), QStringLiteral("The map file is not there."));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(5000, 'x'));
    file.close();
    const auto damaged = QStringLiteral("The map file is damaged, or is no MBTiles file.");
    EXPECT_EQ(complaint(), damaged);
    file.remove();

    write("CREATE TABLE other (x integer);");
    EXPECT_EQ(complaint(), damaged);
    file.remove();
    write((std::string(tables) + "INSERT INTO metadata VALUES ('format', 'pbf')").c_str());
    EXPECT_EQ(complaint(),
              QStringLiteral("The map file holds vector tiles; Nightjar shows picture tiles only."));
    file.remove();
    write("CREATE TABLE tiles (zoom_level, tile_column, tile_row); CREATE TABLE metadata (name, value);");
    EXPECT_EQ(complaint(), damaged);
    file.remove();
    write(
        "CREATE TABLE metadata (name, value); CREATE VIEW tiles AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL"
        " SELECT i + 1 FROM n) SELECT i AS zoom_level, 1 AS tile_column, 1 AS tile_row, 'x' AS tile_data "
        "FROM n;");
    EXPECT_EQ(complaint(), QStringLiteral("The map file holds no tiles.")) << "a query without end";
}

TEST_F(MbtilesFileTest, aBadTileOrFileLeavesTheMapAsItWas) {
    write((std::string(tables) + "INSERT INTO metadata VALUES ('minzoom', '5'), ('maxzoom', '5')").c_str(),
          "<html>no picture</html>");
    MapTiles tiles(MapTileSettings{});
    ASSERT_TRUE(use(tiles, path));
    int told = 0;
    QObject::connect(&tiles, &MapTiles::changed, [&] { ++told; });
    ASSERT_TRUE(runEventsUntil([&] {
        tiles.beginFrame({});
        EXPECT_TRUE(tiles.detail({5, 17, 10}, {}, MapTiles::Asking::yes).empty());
        return told > 0;
    }));

    const auto refused = use(tiles, QStringLiteral("/nowhere/at/all.mbtiles"));
    ASSERT_TRUE(refused);
    EXPECT_FALSE(refused->has_value());
    EXPECT_TRUE(tiles.hasLocalFile());
}

} // namespace
} // namespace nightjar
