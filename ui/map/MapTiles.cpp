// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/MapTiles.h"

#include "ui/map/MbtilesFile.h"
#include "ui/map/TilePicture.h"

#include <algorithm>
#include <utility>

namespace nightjar {

namespace {

constexpr int mostLevelsUp = 7;
constexpr qsizetype mostStandIns = 8192;

/// The tile, or what the cache has instead: a part of a coarser one, and over it finer ones.
std::vector<TilePiece> piecesFrom(TileCache& cache, const TileKey& key) {
    const QRectF whole(0, 0, 1, 1);
    if (const QImage* image = cache.find(key))
        return {{*image, image->rect(), whole, true}};

    std::vector<TilePiece> pieces;
    for (int up = 1; up <= std::min(mostLevelsUp, key.zoom); ++up) {
        const TileKey coarser = key.ancestor(up);
        if (const QImage* image = cache.find(coarser)) {
            const double size = image->width() / static_cast<double>(1 << up);
            const QPointF corner((key.column - (coarser.column << up)) * size,
                                 (key.row - (coarser.row << up)) * size);
            pieces.push_back({*image, QRectF(corner, QSizeF(size, size)), whole});
            break;
        }
    }
    for (int quarter = 0; quarter < 4; ++quarter) {
        const TileKey finer{key.zoom + 1, 2 * key.column + quarter % 2, 2 * key.row + quarter / 2};
        if (const QImage* image = cache.find(finer))
            pieces.push_back({*image, image->rect(), QRectF(quarter % 2 * 0.5, quarter / 2 * 0.5, 0.5, 0.5)});
    }
    return pieces;
}

} // namespace

MapTiles::MapTiles(MapTileSettings settings, QObject* parent)
    : QObject(parent), m_settings(std::move(settings)), m_painters(*this, 2), m_reader(*this, 1) {
    if (m_settings.isStreetMapEnabled)
        startStreets();
}

MapTiles::~MapTiles() = default;

void MapTiles::setStreetMapEnabled(bool isEnabled) {
    if (m_settings.isStreetMapEnabled == isEnabled)
        return;
    m_settings.isStreetMapEnabled = isEnabled;
    if (isEnabled)
        startStreets();
    else
        stopStreets();
    Q_EMIT changed();
}

std::expected<void, QString> MapTiles::setStreetTemplate(const QString& urlTemplate,
                                                         const QString& attribution) {
    if (const auto checked = StreetTiles::check(urlTemplate); !checked)
        return checked;
    m_settings.streetAttribution = attribution;
    if (m_settings.streetTemplate != urlTemplate) {
        m_settings.streetTemplate = urlTemplate;
        stopStreets();
        if (m_settings.isStreetMapEnabled)
            startStreets();
    }
    Q_EMIT changed();
    return {};
}

void MapTiles::startStreets() {
    if (m_streets || !StreetTiles::check(m_settings.streetTemplate))
        return;
    StreetTilesSettings settings;
    settings.urlTemplate = m_settings.streetTemplate;
    settings.maximumParallel = m_settings.maximumParallel;
    settings.retryAfter = m_settings.retryAfter;
    settings.fetcher = {m_settings.cacheFolder, m_settings.userAgent, m_settings.timeout,
                        m_settings.minimumAge};
    m_streets = std::make_unique<StreetTiles>(std::move(settings));
    m_streets->allow(true);
    connect(m_streets.get(), &StreetTiles::retryDue, this, &MapTiles::changed);
    connect(m_streets.get(), &StreetTiles::arrived, this,
            [this](const TileKey& key, bool isDark, const QImage& picture) {
                if (isDark != m_isDark)
                    return;
                m_streetCache.insert(key, picture);
                Q_EMIT changed();
            });
}

void MapTiles::stopStreets() {
    if (m_streets) {
        m_streets->allow(false);
        m_streets.reset();
    }
    m_streetCache.clear();
}

void MapTiles::setLocalFile(const std::optional<QString>& path, Opened opened) {
    const int generation = ++m_local.generation;
    if (!path) {
        useLocalFile(nullptr);
        if (opened)
            QMetaObject::invokeMethod(
                this, [opened = std::move(opened)] { opened({}); }, Qt::QueuedConnection);
        return;
    }
    m_reader.run([this, generation, path = *path, opened = std::move(opened)]() -> TileWorkers::Arrival {
        auto file = MbtilesFile::open(path);
        const auto result = file ? std::expected<void, QString>() : std::unexpected(file.error());
        const std::shared_ptr<MbtilesFile> found = file ? std::move(*file) : nullptr;
        return [this, generation, opened, result, found] {
            if (generation != m_local.generation)
                return;
            if (found)
                useLocalFile(found);
            if (opened)
                opened(result);
        };
    });
}

void MapTiles::useLocalFile(std::shared_ptr<MbtilesFile> file) {
    m_local.minimumZoom = file ? file->minimumZoom() : 0;
    m_local.maximumZoom = file ? file->maximumZoom() : 0;
    m_local.attribution = file ? file->attribution() : QString();
    m_local.file = std::move(file);
    m_local.standIns.clear();
    m_local.queue.clear();
    m_local.cache.clear();
    Q_EMIT changed();
}

QString MapTiles::attribution() const {
    QStringList names;
    if (m_local.file && !m_local.attribution.isEmpty())
        names << m_local.attribution;
    if (m_streets)
        names << m_settings.streetAttribution;
    if (names.isEmpty() && m_builtInMap->hasLand())
        names << QStringLiteral("Natural Earth");
    names.removeDuplicates();
    return names.join(QStringLiteral(" · "));
}

bool MapTiles::hasDetail() const {
    return m_local.file || m_streets;
}

TileCache& MapTiles::drawnIn(const TileLook& look) {
    return m_drawn[look.isDense ? 1 : 0];
}

void MapTiles::beginFrame(const TileLook& look) {
    if (look.isDark != m_isDark) {
        m_isDark = look.isDark;
        for (TileCache& cache : m_drawn)
            cache.clear();
        m_streetCache.clear();
        m_local.cache.clear();
    }
    drawnIn(look).beginFrame();
    m_drawing.beginFrame();
    m_streetCache.beginFrame();
    m_local.cache.beginFrame();
    m_local.queue.beginFrame();
    if (m_streets)
        m_streets->beginFrame();
}

std::vector<TilePiece> MapTiles::builtIn(const TileKey& key, const TileLook& look) {
    TileCache& cache = drawnIn(look);
    if (!cache.contains(key)) {
        m_drawing.want(key);
        m_wantedLook = look;
        m_draw.request();
    }
    return piecesFrom(cache, key);
}

void MapTiles::drawNext(const TileLook& look) {
    while (const std::optional<TileKey> key = m_drawing.start()) {
        m_painters.run([this, map = m_builtInMap, key = *key, look]() -> TileWorkers::Arrival {
            return [this, key, look, image = map->draw(key, look.isDense ? 512 : 256, look.isDark)] {
                m_drawing.finish(key);
                if (look.isDark == m_isDark)
                    drawnIn(look).insert(key, image);
                drawNext(look);
                Q_EMIT changed();
            };
        });
    }
}

std::vector<TilePiece> MapTiles::detail(const TileKey& key, const TileLook& look, Asking asking) {
    std::vector<TilePiece> pieces;
    if (m_local.file && key.zoom >= m_local.minimumZoom) {
        const TileKey stored = key.ancestor(std::max(0, key.zoom - m_local.maximumZoom));
        if (asking == Asking::yes && isLocalMissing(stored)) {
            m_local.queue.want(stored);
            readNext(look.isDark);
        }
        pieces = piecesFrom(m_local.cache, key);
        if (m_local.standIns.value(stored) >= 0)
            return pieces;
    }
    if (m_streets) {
        const TileKey served = key.ancestor(std::max(0, key.zoom - StreetTiles::maximumZoom));
        if (asking == Asking::yes && !m_streetCache.contains(served))
            m_streets->want(served, look.isDark);
        pieces = piecesFrom(m_streetCache, key);
    }
    return pieces;
}

bool MapTiles::isLocalMissing(const TileKey& stored) const {
    const int zoom = m_local.standIns.value(stored, stored.zoom);
    return zoom >= 0 && !m_local.cache.contains(stored.ancestor(stored.zoom - zoom));
}

void MapTiles::readNext(bool isDark) {
    const std::optional<TileKey> wanted = m_local.queue.start();
    if (!wanted)
        return;
    m_reader.run([this, key = *wanted, isDark, file = m_local.file]() -> TileWorkers::Arrival {
        TileKey found = key;
        std::optional<QImage> picture;
        for (int up = 0; !picture && up <= std::min(mostLevelsUp, key.zoom - file->minimumZoom()); ++up) {
            found = key.ancestor(up);
            if (const auto bytes = file->tile(found))
                picture = TilePicture::decode(*bytes);
        }
        if (picture && isDark)
            picture = TilePicture::forNight(std::move(*picture));
        return [this, key, found, isDark, file, picture = picture.value_or(QImage())] {
            m_local.queue.finish(key);
            if (file == m_local.file && isDark == m_isDark) {
                if (!picture.isNull())
                    m_local.cache.insert(found, picture);
                if (m_local.standIns.size() >= mostStandIns)
                    m_local.standIns.clear();
                if (picture.isNull() || found != key)
                    m_local.standIns.insert(key, picture.isNull() ? -1 : found.zoom);
                Q_EMIT changed();
            }
            if (m_local.file)
                readNext(m_isDark);
        };
    });
}

} // namespace nightjar
