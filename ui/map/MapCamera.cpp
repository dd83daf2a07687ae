// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/MapCamera.h"

#include <algorithm>
#include <cmath>

namespace nightjar {

namespace {

constexpr double tile = 256;        ///< points of the whole world at zoom 0
constexpr double closestFit = 18;   ///< a single position is not shown closer than this
constexpr int fitTime = 350;        ///< milliseconds
constexpr int zoomTime = 160;       ///< milliseconds
constexpr double revealMargin = 48; ///< points

double wrapped(double x) {
    return x - std::floor(x);
}

/// By the shorter way round the Earth.
double eastward(double from, double to) {
    const double distance = to - from;
    return distance - std::round(distance);
}

} // namespace

MapCamera::MapCamera(QObject* parent) : QObject(parent) {
    m_animation.setStartValue(0.0);
    m_animation.setEndValue(1.0);
    connect(&m_animation, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& value) { glide(value.toDouble()); });
    m_shown = MapRegion{{0, 0}, 170, 360};
    m_place = placeOf(*m_shown);
}

double MapCamera::worldSize() const {
    return tile * std::exp2(m_place.zoom);
}

double MapCamera::minimumZoom() const {
    return std::log2(std::max(m_view.width(), m_view.height()) / tile);
}

void MapCamera::setViewSize(QSizeF size) {
    size = size.expandedTo(QSizeF(1, 1));
    if (size == m_view)
        return;
    m_view = size;
    m_animation.stop();
    set(m_shown ? placeOf(*m_shown) : m_place);
}

MapRegion MapCamera::region() const {
    const MapCoordinate northWest = mercator::unproject(toWorld({0, 0}));
    const MapCoordinate southEast = mercator::unproject(toWorld({m_view.width(), m_view.height()}));
    return {{(northWest.latitude + southEast.latitude) / 2, (m_place.center.x() - 0.5) * 360},
            northWest.latitude - southEast.latitude,
            southEast.longitude - northWest.longitude};
}

void MapCamera::show(const MapRegion& region, Motion motion) {
    if (!isOnEarth(region.center) || !(region.latitudeDelta >= 0) || !(region.longitudeDelta >= 0))
        return;
    m_animation.stop();
    m_shown = region;
    if (motion == Motion::jump)
        set(placeOf(region));
    else
        glideTo(placeOf(region), std::nullopt, fitTime, QEasingCurve::InOutQuad);
}

void MapCamera::pan(QPointF points) {
    m_animation.stop();
    m_shown.reset();
    set({m_place.center - points / worldSize(), m_place.zoom});
}

void MapCamera::zoomAt(QPointF anchor, double steps, Motion motion) {
    if (!std::isfinite(steps))
        return;
    const bool isZooming = isGliding() && m_anchor;
    const double target =
        std::clamp((isZooming ? m_to.zoom : m_place.zoom) + steps, minimumZoom(), maximumZoom);
    m_animation.stop();
    m_shown.reset();
    if (motion == Motion::jump)
        set(zoomedAt(anchor, target));
    else
        glideTo({m_place.center, target}, anchor, zoomTime, QEasingCurve::OutCubic);
}

void MapCamera::reveal(QPointF place, Motion motion) {
    const QPointF at = toView(place);
    const double marginX = std::min(revealMargin, m_view.width() / 2);
    const double marginY = std::min(revealMargin, m_view.height() / 2);
    const QPointF inside(std::clamp(at.x(), marginX, m_view.width() - marginX),
                         std::clamp(at.y(), marginY, m_view.height() - marginY));
    if (inside == at)
        return;
    m_animation.stop();
    m_shown.reset();
    const Place target{m_place.center + (at - inside) / worldSize(), m_place.zoom};
    if (motion == Motion::jump)
        set(target);
    else
        glideTo(target, std::nullopt, zoomTime, QEasingCurve::OutCubic);
}

QPointF MapCamera::toView(QPointF place) const {
    const QPointF away(eastward(m_place.center.x(), place.x()), place.y() - m_place.center.y());
    return away * worldSize() + QPointF(m_view.width() / 2, m_view.height() / 2);
}

QPointF MapCamera::toWorld(QPointF viewPoint) const {
    return m_place.center + (viewPoint - QPointF(m_view.width() / 2, m_view.height() / 2)) / worldSize();
}

MapCamera::Place MapCamera::placeOf(const MapRegion& region) const {
    const double latitudes = std::min(region.latitudeDelta, 180.0) / 2;
    const double longitudes = std::min(region.longitudeDelta, 360.0);
    const double north = mercator::project({region.center.latitude + latitudes, 0}).y();
    const double south = mercator::project({region.center.latitude - latitudes, 0}).y();
    const double smallest = 1e-9;
    const double scale = std::min(m_view.width() / std::max(longitudes / 360, smallest),
                                  m_view.height() / std::max(south - north, smallest));
    return inBounds({{region.center.longitude / 360 + 0.5, (north + south) / 2},
                     std::min(std::log2(scale / tile), closestFit)});
}

MapCamera::Place MapCamera::inBounds(Place place) const {
    place.zoom = std::clamp(place.zoom, minimumZoom(), maximumZoom);
    const double half = m_view.height() / (tile * std::exp2(place.zoom)) / 2;
    place.center = {wrapped(place.center.x()),
                    half < 0.5 ? std::clamp(place.center.y(), half, 1 - half) : 0.5};
    return place;
}

void MapCamera::set(Place place) {
    m_place = inBounds(place);
    Q_EMIT changed();
}

MapCamera::Place MapCamera::zoomedAt(QPointF anchor, double zoom) const {
    const QPointF fromMiddle = anchor - QPointF(m_view.width() / 2, m_view.height() / 2);
    return {toWorld(anchor) - fromMiddle / (tile * std::exp2(zoom)), zoom};
}

void MapCamera::glideTo(Place target, std::optional<QPointF> anchor, int milliseconds,
                        QEasingCurve::Type curve) {
    m_from = m_place;
    m_to = target;
    m_anchor = anchor;
    m_animation.setDuration(milliseconds);
    m_animation.setEasingCurve(curve);
    m_animation.start();
}

void MapCamera::glide(double progress) {
    const double zoom = m_from.zoom + (m_to.zoom - m_from.zoom) * progress;
    if (m_anchor) {
        set(zoomedAt(*m_anchor, zoom));
        return;
    }
    // The centre follows the scale, not the time: so the way looks straight while it zooms.
    double way = progress;
    if (std::abs(m_to.zoom - m_from.zoom) > 0.01)
        way =
            (std::exp2(-zoom) - std::exp2(-m_from.zoom)) / (std::exp2(-m_to.zoom) - std::exp2(-m_from.zoom));
    const QPointF distance(eastward(m_from.center.x(), m_to.center.x()), m_to.center.y() - m_from.center.y());
    set({m_from.center + distance * way, zoom});
}

} // namespace nightjar
