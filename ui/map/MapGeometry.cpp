// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/MapGeometry.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

namespace nightjar {

namespace {

constexpr double spreadFactor = 1.45;
constexpr double degree = std::numbers::pi / 180;
constexpr double equator = 40'075'016.686; ///< metres

enum class Side { left, right, top, bottom };

QPolygonF clippedAt(const QPolygonF& polygon, Side side, double edge) {
    const bool isVertical = side == Side::left || side == Side::right;
    const double sign = side == Side::left || side == Side::top ? 1 : -1;
    const auto beyond = [=](QPointF point) { return sign * ((isVertical ? point.x() : point.y()) - edge); };

    QPolygonF out;
    if (polygon.isEmpty())
        return out;
    out.reserve(polygon.size());
    QPointF previous = polygon.last();
    for (const QPointF& point : polygon) {
        const double from = beyond(previous);
        const double to = beyond(point);
        if ((from >= 0) != (to >= 0))
            out << previous + (point - previous) * (from / (from - to));
        if (to >= 0)
            out << point;
        previous = point;
    }
    return out;
}

} // namespace

bool isOnEarth(const MapCoordinate& coordinate) {
    return std::abs(coordinate.latitude) <= 90 && std::abs(coordinate.longitude) <= 180;
}

MapRegion regionFitting(const std::vector<MapCoordinate>& positions, double minimumSpan) {
    std::vector<MapCoordinate> real;
    std::ranges::copy_if(positions, std::back_inserter(real), isOnEarth);
    if (real.empty())
        return {{0, 0}, 170, 360};

    const auto [south, north] = std::ranges::minmax(real, {}, &MapCoordinate::latitude);
    const auto [west, east] = std::ranges::minmax(real, {}, &MapCoordinate::longitude);
    const double minimum = std::isfinite(minimumSpan) ? minimumSpan : 0;
    return {{(south.latitude + north.latitude) / 2, (west.longitude + east.longitude) / 2},
            std::max((north.latitude - south.latitude) * spreadFactor, minimum),
            std::max((east.longitude - west.longitude) * spreadFactor, minimum)};
}

namespace mercator {

QPointF project(const MapCoordinate& coordinate) {
    const double latitude = std::clamp(coordinate.latitude, -maximumLatitude, maximumLatitude);
    const double y = 0.5 - std::asinh(std::tan(latitude * degree)) / (2 * std::numbers::pi);
    return {coordinate.longitude / 360 + 0.5, std::clamp(y, 0.0, 1.0)};
}

MapCoordinate unproject(QPointF point) {
    const double y = std::clamp(point.y(), 0.0, 1.0);
    return {std::atan(std::sinh(std::numbers::pi * (1 - 2 * y))) / degree, (point.x() - 0.5) * 360};
}

double unitsPerMetre(double latitude) {
    return 1 / (equator * std::cos(std::clamp(latitude, -maximumLatitude, maximumLatitude) * degree));
}

} // namespace mercator

QPolygonF clippedTo(const QPolygonF& polygon, const QRectF& box) {
    QPolygonF out = clippedAt(polygon, Side::left, box.left());
    out = clippedAt(out, Side::right, box.right());
    out = clippedAt(out, Side::top, box.top());
    return clippedAt(out, Side::bottom, box.bottom());
}

} // namespace nightjar
