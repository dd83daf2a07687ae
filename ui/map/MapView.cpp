// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/MapView.h"

#include "ui/map/MapAccessible.h"
#include "ui/map/MapButton.h"

#include <QAccessible>
#include <QSet>

#include <algorithm>
#include <chrono>
#include <utility>

namespace nightjar {

namespace {

constexpr std::chrono::milliseconds regionPace{100};
constexpr int buttonMargin = 12;

bool isBefore(const MapMarker& a, const MapMarker& b) {
    if (const int order = a.title.compare(b.title, Qt::CaseInsensitive); order != 0)
        return order < 0;
    return a.id < b.id;
}

/// By title, so that labels keep their precedence and the keys their order while the list behind changes its
/// own.
std::vector<MapMarker> inOrder(std::vector<MapMarker> markers) {
    QSet<QString> known;
    std::erase_if(markers, [&known](const MapMarker& marker) {
        if (!isOnEarth(marker.at) || known.contains(marker.id))
            return true;
        known.insert(marker.id);
        return false;
    });
    std::ranges::sort(markers, isBefore);
    return markers;
}

} // namespace

MapView::MapView(MapTiles& tiles, QWidget* parent)
    : QWidget(parent),
      m_tiles(tiles),
      m_zoomIn(
          new MapButton(QStringLiteral("plus"), QStringLiteral("Zoom in"), this, MapButton::Corners::top)),
      m_zoomOut(new MapButton(QStringLiteral("minus"), QStringLiteral("Zoom out"), this,
                              MapButton::Corners::bottom)),
      m_loadStreets(new MapButton(QStringLiteral("Load street map"), this)) {
    installMapAccessibility();
    setAccessibleName(QStringLiteral("Map"));
    setAccessibleDescription(QStringLiteral(
        "Arrow keys move the map, plus and minus zoom, 0 shows all markers. "
        "N and P go from marker to marker, Return chooses one, the Menu key shows what it offers."));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);

    m_regionTimer.setSingleShot(true);
    m_regionTimer.setInterval(regionPace);
    connect(&m_regionTimer, &QTimer::timeout, this, &MapView::tellRegion);
    connect(&m_camera, &MapCamera::changed, this, &MapView::cameraChanged);
    connect(&m_tiles, &MapTiles::changed, this, [this] {
        placeButtons();
        forgetBackdrop();
    });
    connect(m_zoomIn, &QToolButton::clicked, this, [this] { zoomByStep(1); });
    connect(m_zoomOut, &QToolButton::clicked, this, [this] { zoomByStep(-1); });
    connect(m_loadStreets, &QToolButton::clicked, this, &MapView::streetMapRequested);
    m_camera.setViewSize(size());
    placeButtons();
}

MapView::~MapView() = default;

void MapView::setMarkers(std::vector<MapMarker> markers) {
    markers = inOrder(std::move(markers));
    if (markers == m_markers)
        return;
    const bool isSameSet = std::ranges::equal(markers, m_markers, {}, &MapMarker::id, &MapMarker::id);
    m_markers = std::move(markers);
    m_places.clear();
    for (const MapMarker& each : m_markers)
        m_places.push_back(mercator::project(each.at));
    if (!marker(m_hovered))
        setHovered({});
    if (!marker(m_keyboard))
        m_keyboard.clear();
    if (!isSameSet)
        tellMarkersChanged(*this);
    update();
}

void MapView::setSelectedMarker(const QString& id) {
    if (std::exchange(m_selected, id) != id)
        update();
}

void MapView::setCircle(std::optional<MapCircle> circle) {
    if (circle && (!isOnEarth(circle->center) || !(circle->metres >= 0)))
        circle.reset();
    if (circle == m_circle)
        return;
    const bool isSameSet = circle.has_value() == m_circle.has_value();
    m_circle = std::move(circle);
    if (!isSameSet)
        tellMarkersChanged(*this);
    forgetBackdrop();
}

void MapView::setTrail(const std::vector<MapCoordinate>& trail) {
    if (m_trail.set(trail))
        forgetBackdrop();
}

void MapView::fitPositions(const std::vector<MapCoordinate>& positions, double minimumSpan, bool animated) {
    if (std::ranges::none_of(positions, isOnEarth))
        return;
    userMoves();
    showRegion(regionFitting(positions, minimumSpan), animated);
}

void MapView::showRegion(const MapRegion& region, bool animated) {
    const bool glides = animated && isVisible();
    m_camera.show(region, glides ? MapCamera::Motion::glide : MapCamera::Motion::jump);
}

QPointF MapView::positionOf(const MapCoordinate& coordinate) const {
    return m_camera.toView(mercator::project(coordinate));
}

void MapView::cameraChanged() {
    forgetBackdrop();
    if (m_tellsRegion && !m_regionTimer.isActive())
        m_regionTimer.start();
}

void MapView::tellRegion() {
    m_regionTimer.stop();
    Q_EMIT regionChanged(m_camera.region());
}

void MapView::forgetBackdrop() {
    m_backdrop = {};
    update();
}

void MapView::placeButtons() {
    for (MapButton* button : {m_zoomIn, m_zoomOut, m_loadStreets})
        button->resize(button->sizeHint());
    const QPoint corner(width() - m_zoomIn->width() - buttonMargin, buttonMargin);
    m_zoomIn->move(corner);
    m_zoomOut->move(corner + QPoint(0, m_zoomIn->height()));
    m_loadStreets->move(buttonMargin, buttonMargin);
    m_loadStreets->setVisible(!m_tiles.isStreetMapEnabled() && !m_tiles.hasLocalFile());
}

const MapMarker* MapView::marker(const QString& id) const {
    const auto found = std::ranges::find(m_markers, id, &MapMarker::id);
    return found == m_markers.end() ? nullptr : &*found;
}

MarkerState MapView::stateOf(const MapMarker& marker) const {
    if (marker.id == m_selected)
        return MarkerState::selected;
    return marker.id == m_hovered || marker.id == m_keyboard ? MarkerState::hovered : MarkerState::plain;
}

void MapView::activateMarker(const QString& id) {
    if (marker(id))
        Q_EMIT markerActivated(id);
}

void MapView::focusMarker(const QString& id) {
    const MapMarker* reached = marker(id);
    if (!reached)
        return;
    m_keyboard = id;
    userMoves();
    m_camera.reveal(mercator::project(reached->at),
                    isVisible() ? MapCamera::Motion::glide : MapCamera::Motion::jump);
    tellMarkerFocused(*this);
    update();
}

void MapView::stepMarker(int direction) {
    if (m_markers.empty())
        return;
    const auto count = static_cast<int>(m_markers.size());
    const auto found = std::ranges::find(m_markers, m_keyboard, &MapMarker::id);
    const int current =
        found == m_markers.end() ? (direction > 0 ? -1 : count) : int(found - m_markers.begin());
    focusMarker(m_markers[static_cast<std::size_t>((current + direction + count) % count)].id);
}

} // namespace nightjar
