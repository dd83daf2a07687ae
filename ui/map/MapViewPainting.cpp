// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/MapFurniture.h"
#include "ui/map/MapView.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace nightjar {

namespace {

constexpr double captionShare = 0.87; ///< of the size of normal text
constexpr qreal discRadius = 13;      ///< what labels keep off
constexpr qreal labelDistance = 15;   ///< below the middle of a disc

/// Edges on whole pixels, so that no seam shows between two tiles.
QRectF onPixels(const QRectF& box, qreal pixelRatio) {
    const auto rounded = [pixelRatio](qreal value) { return std::round(value * pixelRatio) / pixelRatio; };
    return {QPointF(rounded(box.left()), rounded(box.top())),
            QPointF(rounded(box.right()), rounded(box.bottom()))};
}

} // namespace

QFont MapView::captionFont(QFont::Weight weight) const {
    QFont caption = font();
    if (caption.pixelSize() > 0)
        caption.setPixelSize(qRound(caption.pixelSize() * captionShare));
    else
        caption.setPointSizeF(caption.pointSizeF() * captionShare);
    caption.setWeight(weight);
    caption.setHintingPreference(QFont::PreferNoHinting);
    return caption;
}

void MapView::paintEvent(QPaintEvent* event) {
    if (m_backdrop.isNull() || m_backdrop.devicePixelRatio() != devicePixelRatioF())
        paintBackdrop();
    QPainter painter(this);
    painter.setClipRegion(event->region());
    painter.drawPixmap(0, 0, m_backdrop);
    painter.setRenderHint(QPainter::Antialiasing);
    m_pictures.prepare(Colors::of(this), captionFont(QFont::DemiBold), devicePixelRatioF());
    paintMarkers(painter);
    paintFurniture(painter);
}

void MapView::paintBackdrop() {
    m_backdrop = QPixmap((QSizeF(size()) * devicePixelRatioF()).toSize().expandedTo({1, 1}));
    m_backdrop.setDevicePixelRatio(devicePixelRatioF());
    QPainter painter(&m_backdrop);
    paintTiles(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_circle) {
        const double radius =
            m_circle->metres * mercator::unitsPerMetre(m_circle->center.latitude) * m_camera.worldSize();
        MapFurniture::paintCircle(painter, rect(), positionOf(m_circle->center), radius, Colors::of(this));
    }
    paintTrail(painter);
}

std::vector<MapView::ShownTile> MapView::tilesOfView(bool isDetail, const TileLook& look, bool& isComplete) {
    const double sharper = isDetail && look.isDense ? 0.5 : 0;
    const int zoom = std::clamp(static_cast<int>(std::lround(m_camera.zoom() + sharper)), 0, 20);
    const int count = 1 << zoom;
    const double tileSize = m_camera.worldSize() / count;
    const QPointF northWest = m_camera.toWorld({0, 0}) * count;
    const QPointF southEast = m_camera.toWorld(QPointF(width(), height())) * count;
    const auto asking = m_camera.isGliding() ? MapTiles::Asking::no : MapTiles::Asking::yes;

    std::vector<ShownTile> shown;
    const int lastRow = std::min(count - 1, static_cast<int>(std::floor(southEast.y())));
    for (int row = std::max(0, static_cast<int>(std::floor(northWest.y()))); row <= lastRow; ++row) {
        const int lastColumn = static_cast<int>(std::floor(southEast.x()));
        for (int column = static_cast<int>(std::floor(northWest.x())); column <= lastColumn; ++column) {
            const TileKey key{zoom, ((column % count) + count) % count, row};
            std::vector<TilePiece> pieces =
                isDetail ? m_tiles.detail(key, look, asking) : m_tiles.builtIn(key, look);
            isComplete = isComplete && !pieces.empty() && pieces.front().isWhole;
            const QPointF corner(column, row);
            for (TilePiece& piece : pieces) {
                const QRectF place((piece.target.topLeft() + corner - northWest) * tileSize,
                                   piece.target.size() * tileSize);
                shown.push_back({std::move(piece), onPixels(place, devicePixelRatioF())});
            }
        }
    }
    return shown;
}

void MapView::paintTiles(QPainter& painter) {
    const Colors& colors = Colors::of(this);
    const TileLook look{colors.isDark, devicePixelRatioF() > 1};
    m_tiles.beginFrame(look);
    painter.fillRect(rect(), colors.water);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const auto paint = [&painter](const std::vector<ShownTile>& tiles) {
        for (const ShownTile& tile : tiles)
            painter.drawImage(tile.target, tile.piece.image, tile.piece.source);
    };

    bool coversAll = m_tiles.hasDetail();
    std::vector<ShownTile> detail;
    if (coversAll)
        detail = tilesOfView(true, look, coversAll);
    if (!coversAll) {
        bool ignored = true;
        paint(tilesOfView(false, look, ignored));
    }
    paint(detail);
}

void MapView::paintTrail(QPainter& painter) {
    const Colors& colors = Colors::of(this);
    const QPointF northWest = m_camera.toWorld({0, 0});
    const QPointF southEast = m_camera.toWorld(QPointF(width(), height()));
    const double size = m_camera.worldSize();
    const double edge = 8 / size;
    auto pieces = m_trail.pieces(QRectF(northWest, southEast).adjusted(-edge, -edge, edge, edge), size);
    for (QPolygonF& piece : pieces)
        for (QPointF& point : piece)
            point = (point - northWest) * size;

    // Lines one by one: a stroke that crosses itself often would take ten times as long.
    for (const auto& [color, width] : {std::pair(colors.content, 6.0), std::pair(colors.orange, 3.2)}) {
        painter.setPen(QPen(color, width, Qt::SolidLine, Qt::SquareCap));
        for (const QPolygonF& piece : pieces)
            for (qsizetype i = 1; i < piece.size(); ++i)
                painter.drawLine(piece[i - 1], piece[i]);
    }
}

void MapView::paintMarkers(QPainter& painter) {
    constexpr qreal half = MarkerPictures::discExtent / 2;
    const QRectF visible = QRectF(rect()).adjusted(-half, -half, half, half);
    std::vector<QRectF> discs;
    for (const MarkerState state : {MarkerState::plain, MarkerState::hovered, MarkerState::selected}) {
        for (std::size_t i = 0; i < m_markers.size(); ++i) {
            const QPointF at = m_camera.toView(m_places[i]);
            if (!visible.contains(at) || stateOf(m_markers[i]) != state)
                continue;
            painter.drawPixmap(
                onPixels(QRectF(at - QPointF(half, half), QSizeF()), devicePixelRatioF()).topLeft(),
                m_pictures.disc(m_markers[i], state));
            discs.emplace_back(at - QPointF(discRadius, discRadius), QSizeF(2 * discRadius, 2 * discRadius));
            if (m_markers[i].id == m_keyboard && hasFocus()) {
                painter.setBrush(Qt::NoBrush);
                painter.setPen(QPen(Colors::of(this).accent, 2));
                painter.drawEllipse(at, discRadius + 6, discRadius + 6);
            }
        }
    }
    paintLabels(painter, discs);
}

void MapView::paintLabels(QPainter& painter, const std::vector<QRectF>& discs) {
    std::vector<QString> titles;
    std::vector<QRectF> boxes;
    const auto add = [&](QPointF at, const QString& title, qreal distance) {
        if (title.isEmpty() || !QRectF(rect()).adjusted(-100, -40, 100, 10).contains(at))
            return;
        const QSizeF size = m_pictures.labelSize(title);
        titles.push_back(title);
        boxes.emplace_back(QPointF(at.x() - size.width() / 2, at.y() + distance), size);
    };
    std::size_t certain = 0;
    for (const MarkerState state : {MarkerState::selected, MarkerState::hovered, MarkerState::plain}) {
        for (std::size_t i = 0; i < m_markers.size(); ++i)
            if (stateOf(m_markers[i]) == state)
                add(m_camera.toView(m_places[i]), m_markers[i].title, labelDistance);
        if (state != MarkerState::plain)
            certain = boxes.size();
    }
    if (m_circle)
        add(positionOf(m_circle->center), m_circle->title, labelDistance - 6);

    const std::vector<bool> fits = labelsThatFit(boxes, discs, certain);
    for (std::size_t i = boxes.size(); i-- > 0;)
        if (fits[i])
            painter.drawPixmap(onPixels(boxes[i], devicePixelRatioF()).topLeft(),
                               m_pictures.label(titles[i]));
}

void MapView::paintFurniture(QPainter& painter) {
    const Colors& colors = Colors::of(this);
    painter.setFont(captionFont(QFont::Normal));
    const double latitude = mercator::unproject(m_camera.center()).latitude;
    MapFurniture::paintScaleBar(painter, rect(), mercator::unitsPerMetre(latitude) * m_camera.worldSize(),
                                colors);
    MapFurniture::paintAttribution(painter, rect(), m_tiles.attribution(), colors);
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange)) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(withAlpha(colors.accent, 160), 3));
        painter.drawRect(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5));
    }
}

} // namespace nightjar
