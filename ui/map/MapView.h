// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/map/LabelLayout.h"
#include "ui/map/MapCamera.h"
#include "ui/map/MapMarker.h"
#include "ui/map/MapTiles.h"
#include "ui/map/MarkerPictures.h"
#include "ui/map/TrailLine.h"

#include <QPixmap>
#include <QTimer>
#include <QWidget>

#include <optional>
#include <vector>

namespace nightjar {

class MapButton;

/// A map with markers, one circle and one trail. Moves by drag, wheel, touch pad, double click, buttons and
/// keys: arrows, plus and minus, 0 or Home to see all markers, N and P to go from marker to marker, Return to
/// choose the one reached, Menu for what can be done with it. It keeps no choice of its own: the owner says
/// what is selected.
class MapView : public QWidget {
    Q_OBJECT

public:
    /// `tiles` outlives it and may serve several maps.
    explicit MapView(MapTiles& tiles, QWidget* parent = nullptr);
    ~MapView() override;

    /// In any order; a second marker of the same id, and one that is not on Earth, is left out.
    void setMarkers(std::vector<MapMarker> markers);
    void setSelectedMarker(const QString& id);
    void setCircle(std::optional<MapCircle> circle);
    /// Oldest first.
    void setTrail(const std::vector<MapCoordinate>& trail);

    /// Moves to where all of them are seen; in 0.35 s while it is visible. Nothing to see, nothing moves.
    void fitPositions(const std::vector<MapCoordinate>& positions, double minimumSpan, bool animated = true);
    [[nodiscard]] MapRegion region() const { return m_camera.region(); }
    /// Not told by `regionChanged`.
    void showRegion(const MapRegion& region, bool animated = false);

    /// As shown, ordered by title.
    [[nodiscard]] const std::vector<MapMarker>& markers() const { return m_markers; }
    [[nodiscard]] const std::optional<MapCircle>& circle() const { return m_circle; }
    [[nodiscard]] const QString& selectedMarker() const { return m_selected; }
    /// The marker that the keys have reached; empty when there is none.
    [[nodiscard]] const QString& keyboardMarker() const { return m_keyboard; }
    [[nodiscard]] QPointF positionOf(const MapCoordinate& coordinate) const;
    void activateMarker(const QString& id);
    void focusMarker(const QString& id);

    [[nodiscard]] QSize sizeHint() const override { return {760, 620}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {200, 160}; }

Q_SIGNALS:
    /// What is visible after the user or a fit moved the map; at most ten times a second, and always the
    /// last.
    void regionChanged(const nightjar::MapRegion& region);
    void markerActivated(const QString& id);
    void markerMenuRequested(const QString& id, const QPoint& globalPosition);
    /// The user wants the street map, which is not enabled yet.
    void streetMapRequested();

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    struct ShownTile {
        TilePiece piece;
        QRectF target;
    };

    // What the tiles, the circle and the trail look like; kept until one of them or the camera changes.
    void paintBackdrop();
    void paintTiles(QPainter& painter);
    [[nodiscard]] std::vector<ShownTile> tilesOfView(bool isDetail, const TileLook& look, bool& isComplete);
    void paintTrail(QPainter& painter);
    void paintMarkers(QPainter& painter);
    void paintLabels(QPainter& painter, const std::vector<QRectF>& discs);
    void paintFurniture(QPainter& painter);
    [[nodiscard]] QFont captionFont(QFont::Weight weight) const;

    void forgetBackdrop();
    void cameraChanged();
    void userMoves() { m_tellsRegion = true; }
    void tellRegion();
    void placeButtons();
    [[nodiscard]] const MapMarker* marker(const QString& id) const;
    [[nodiscard]] const MapMarker* markerAt(QPointF point) const;
    [[nodiscard]] MarkerState stateOf(const MapMarker& marker) const;
    void setHovered(const QString& id);
    void stepMarker(int direction);
    bool panByKey(const QKeyEvent& event);
    void zoomByStep(double steps);

    MapTiles& m_tiles;
    MapCamera m_camera;
    std::vector<MapMarker> m_markers;
    std::vector<QPointF> m_places; ///< of the markers, on the Mercator square
    std::optional<MapCircle> m_circle;
    TrailLine m_trail;
    QString m_selected;
    QString m_hovered;
    QString m_keyboard;

    MarkerPictures m_pictures;
    QPixmap m_backdrop; ///< null when it is to be drawn again
    MapButton* m_zoomIn;
    MapButton* m_zoomOut;
    MapButton* m_loadStreets;

    bool m_tellsRegion = false;
    QTimer m_regionTimer;
    QPointF m_pressedAt;
    QPointF m_lastAt;
    bool m_isDragging = false;
};

} // namespace nightjar
