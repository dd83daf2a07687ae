// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/Coalesced.h"
#include "ui/map/BuiltInMap.h"
#include "ui/map/StreetTiles.h"
#include "ui/map/TileCache.h"
#include "ui/map/TileWorkers.h"

#include <QHash>
#include <QObject>
#include <QRectF>

#include <array>
#include <functional>
#include <optional>
#include <vector>

namespace nightjar {

class MbtilesFile;

struct MapTileSettings {
    QString streetTemplate = QStringLiteral("https://tile.openstreetmap.org/{z}/{x}/{y}.png");
    QString streetAttribution = QStringLiteral("© OpenStreetMap contributors");
    QString userAgent = QStringLiteral("Nightjar/0.1 desktop");
    bool isStreetMapEnabled = false; ///< the user's consent to ask the server
    QString cacheFolder;             ///< for tiles from the server
    int maximumParallel = 2;
    std::chrono::milliseconds timeout{15'000};
    std::chrono::seconds minimumAge = std::chrono::days(7);
    std::chrono::milliseconds retryAfter{30'000};
};

/// How a tile is to look.
struct TileLook {
    bool isDark = false;
    bool isDense = false; ///< more than one pixel per point
};

/// A picture, or a part of one, and where it belongs in units of the tile that was asked for.
struct TilePiece {
    QImage image;
    QRectF source;
    QRectF target;
    bool isWhole = false; ///< the tile itself, not a stand-in of another zoom
};

/// Where the pictures of all maps come from: a file of the user's, else a tile server the user agreed to,
/// else the built-in map. Nothing is fetched, read or drawn on the GUI thread, on which this lives.
class MapTiles : public QObject {
    Q_OBJECT

public:
    using Opened = std::function<void(std::expected<void, QString>)>;

    explicit MapTiles(MapTileSettings settings, QObject* parent = nullptr);
    ~MapTiles() override;

    void setStreetMapEnabled(bool isEnabled);
    [[nodiscard]] bool isStreetMapEnabled() const { return m_settings.isStreetMapEnabled; }
    /// Another server; refused in one sentence when the template is no usable address.
    std::expected<void, QString> setStreetTemplate(const QString& urlTemplate, const QString& attribution);
    /// The file is opened elsewhere and `opened` is told later, in one sentence when it failed: then
    /// everything stays as it was. Without a path the file is no longer used; that is told too. Only the last
    /// call counts.
    void setLocalFile(const std::optional<QString>& path, Opened opened = {});
    [[nodiscard]] bool hasLocalFile() const { return m_local.file != nullptr; }
    /// Of all that is shown now.
    [[nodiscard]] QString attribution() const;

    // For the maps, in each paint.
    void beginFrame(const TileLook& look);
    /// Whether there is more than the built-in map.
    [[nodiscard]] bool hasDetail() const;
    /// Whether tiles that are not there yet are asked for.
    enum class Asking { no, yes };
    [[nodiscard]] std::vector<TilePiece> builtIn(const TileKey& key, const TileLook& look);
    [[nodiscard]] std::vector<TilePiece> detail(const TileKey& key, const TileLook& look, Asking asking);

Q_SIGNALS:
    /// Other pictures than before, another attribution or another choice.
    void changed();

private:
    struct Local {
        std::shared_ptr<MbtilesFile> file;
        int minimumZoom = 0;
        int maximumZoom = 0;
        QString attribution;
        TileQueue queue{1};
        QHash<TileKey, int> standIns; ///< for tiles that are not in the file: the zoom of what is, or -1
        TileCache cache{10 << 20};
        int generation = 0;
    };

    void startStreets();
    void stopStreets();
    void drawNext(const TileLook& look);
    void readNext(bool isDark);
    void useLocalFile(std::shared_ptr<MbtilesFile> file);
    [[nodiscard]] bool isLocalMissing(const TileKey& stored) const;
    [[nodiscard]] TileCache& drawnIn(const TileLook& look);

    MapTileSettings m_settings;
    std::shared_ptr<const BuiltInMap> m_builtInMap = std::make_shared<BuiltInMap>();
    TileQueue m_drawing{2};
    TileLook m_wantedLook;
    Coalesced m_draw{[this] { drawNext(m_wantedLook); }}; ///< once the frame that wants tiles is on screen
    std::array<TileCache, 2> m_drawn{TileCache(5 << 20), TileCache(5 << 20)}; ///< one per density
    bool m_isDark = false;                                                    ///< what all caches hold
    std::unique_ptr<StreetTiles> m_streets;
    TileCache m_streetCache{10 << 20};
    Local m_local;
    TileWorkers m_painters;
    TileWorkers m_reader;
};

} // namespace nightjar
