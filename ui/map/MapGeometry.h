// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPointF>
#include <QPolygonF>
#include <QRectF>

#include <vector>

namespace nightjar {

/// Degrees. From a radio it may be anything; what is not on Earth is left out of every drawing and fitting.
struct MapCoordinate {
    double latitude = 0;
    double longitude = 0;

    bool operator==(const MapCoordinate&) const = default;
};

/// A visible part of the map: the middle of its latitudes and longitudes, and how far it reaches in all.
struct MapRegion {
    MapCoordinate center;
    double latitudeDelta = 0;
    double longitudeDelta = 0;

    bool operator==(const MapRegion&) const = default;
};

[[nodiscard]] bool isOnEarth(const MapCoordinate& coordinate);

/// Around all positions: centred between the extremes, each span 1.45 times the spread or the minimum span,
/// whichever is larger. Without any position it is the whole world.
[[nodiscard]] MapRegion regionFitting(const std::vector<MapCoordinate>& positions, double minimumSpan);

/// Web Mercator on the unit square: x grows to the east, y to the south, the origin is in the north-west.
namespace mercator {

constexpr double maximumLatitude = 85.0511287798066;

/// Beyond the last latitude of the map it is its edge.
[[nodiscard]] QPointF project(const MapCoordinate& coordinate);
[[nodiscard]] MapCoordinate unproject(QPointF point);
/// How much of the square one metre is, at this latitude.
[[nodiscard]] double unitsPerMetre(double latitude);

} // namespace mercator

/// The part of a polygon inside a rectangle; it may run along the rectangle's edges.
[[nodiscard]] QPolygonF clippedTo(const QPolygonF& polygon, const QRectF& box);

} // namespace nightjar
