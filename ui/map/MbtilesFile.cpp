// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/MbtilesFile.h"

#include "ui/map/TilePicture.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QUrl>

#include <sqlite3.h>

#include <algorithm>

namespace nightjar {

namespace {

constexpr int deepestZoom = 22;
constexpr int longestAttribution = 100;
constexpr int instructionsBetweenChecks = 10'000;
constexpr std::chrono::seconds queryTime{1};

/// Usually a piece of HTML, from whoever made the file.
QString plainText(const QByteArray& html) {
    QString text = QString::fromUtf8(html.left(4096));
    text.remove(QRegularExpression(QStringLiteral("<[^>]*>?")));
    text.replace(QLatin1String("&copy;"), QStringLiteral("©"))
        .replace(QLatin1String("&amp;"), QStringLiteral("&"));
    text.remove(QRegularExpression(QStringLiteral("[\\p{Cf}\\p{Co}\\p{Cs}]")));
    text.replace(QRegularExpression(QStringLiteral("[\\p{C}\\s]+")), QStringLiteral(" "));
    return text.trimmed().left(longestAttribution);
}

std::optional<int> zoomIn(const std::optional<QByteArray>& text) {
    bool isNumber = false;
    const int zoom = text ? text->toInt(&isNumber) : 0;
    return isNumber && zoom >= 0 ? std::optional(std::min(zoom, deepestZoom)) : std::nullopt;
}

} // namespace

MbtilesFile::~MbtilesFile() {
    sqlite3_finalize(m_tile);
    sqlite3_close(m_database);
}

std::expected<std::unique_ptr<MbtilesFile>, QString> MbtilesFile::open(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists())
        return std::unexpected(QStringLiteral("The map file is not there."));
    if (!info.isFile() || !info.isReadable())
        return std::unexpected(QStringLiteral("The map file cannot be read."));
    std::unique_ptr<MbtilesFile> file(new MbtilesFile);
    if (!file->openDatabase(info.absoluteFilePath()))
        return std::unexpected(QStringLiteral("The map file is damaged, or is no MBTiles file."));
    if (const auto complaint = file->readDescription())
        return std::unexpected(*complaint);
    return file;
}

bool MbtilesFile::openDatabase(const QString& path) {
    const QByteArray name = "file:" + QUrl::toPercentEncoding(path, "/") + "?mode=ro&immutable=1";
    constexpr int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX;
    if (sqlite3_open_v2(name.constData(), &m_database, flags, nullptr) != SQLITE_OK)
        return false;
    sqlite3_db_config(m_database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(m_database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_limit(m_database, SQLITE_LIMIT_LENGTH, 2 * int(TilePicture::maximumBytes));
    sqlite3_limit(m_database, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_progress_handler(m_database, instructionsBetweenChecks, isOverdue, this);
    m_deadline = std::chrono::steady_clock::now() + queryTime;
    constexpr auto query =
        "SELECT tile_data FROM tiles WHERE zoom_level = ? AND tile_column = ? AND tile_row = ? LIMIT 1";
    return sqlite3_prepare_v2(m_database, query, -1, &m_tile, nullptr) == SQLITE_OK;
}

std::optional<QString> MbtilesFile::readDescription() {
    constexpr auto about = "SELECT value FROM metadata WHERE name = ? LIMIT 1";
    const QByteArray format = value(about, "format").value_or("png").toLower();
    if (format == "pbf" || format == "mvt")
        return QStringLiteral("The map file holds vector tiles; Nightjar shows picture tiles only.");
    if (format != "png" && format != "jpg" && format != "jpeg" && format != "webp")
        return QStringLiteral("The map file holds tiles in a format that Nightjar does not know.");

    std::optional<int> least = zoomIn(value(about, "minzoom"));
    std::optional<int> most = zoomIn(value(about, "maxzoom"));
    if (!least)
        least = zoomIn(value("SELECT min(zoom_level) FROM tiles"));
    if (!most)
        most = zoomIn(value("SELECT max(zoom_level) FROM tiles"));
    if (!least || !most || *least > *most)
        return QStringLiteral("The map file holds no tiles.");
    m_minimumZoom = *least;
    m_maximumZoom = *most;
    m_attribution = plainText(value(about, "attribution").value_or(QByteArray()));
    return std::nullopt;
}

std::optional<QByteArray> MbtilesFile::value(const char* query, const char* argument) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(m_database, query, -1, &statement, nullptr) != SQLITE_OK)
        return std::nullopt;
    if (argument)
        sqlite3_bind_text(statement, 1, argument, -1, SQLITE_STATIC);
    std::optional<QByteArray> found;
    if (step(statement) == SQLITE_ROW && sqlite3_column_type(statement, 0) != SQLITE_NULL) {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
        found = QByteArray(text, text ? sqlite3_column_bytes(statement, 0) : 0);
    }
    sqlite3_finalize(statement);
    return found;
}

std::optional<QByteArray> MbtilesFile::tile(const TileKey& key) {
    sqlite3_reset(m_tile);
    sqlite3_bind_int(m_tile, 1, key.zoom);
    sqlite3_bind_int(m_tile, 2, key.column);
    sqlite3_bind_int(m_tile, 3, (1 << key.zoom) - 1 - key.row); // counted from the south
    std::optional<QByteArray> found;
    if (step(m_tile) == SQLITE_ROW && sqlite3_column_type(m_tile, 0) == SQLITE_BLOB) {
        const int size = sqlite3_column_bytes(m_tile, 0);
        if (size > 0 && size <= TilePicture::maximumBytes)
            found = QByteArray(static_cast<const char*>(sqlite3_column_blob(m_tile, 0)), size);
    }
    sqlite3_reset(m_tile);
    return found;
}

int MbtilesFile::step(sqlite3_stmt* statement) {
    m_deadline = std::chrono::steady_clock::now() + queryTime;
    return sqlite3_step(statement);
}

int MbtilesFile::isOverdue(void* self) {
    return std::chrono::steady_clock::now() > static_cast<MbtilesFile*>(self)->m_deadline ? 1 : 0;
}

} // namespace nightjar
