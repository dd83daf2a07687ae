// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/MapGeometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace nightjar {

namespace {

constexpr double spreadFactor = 1.45;
constexpr double degree = std::numbers::pi / 180;
constexpr double equator = 40'075'016.686; ///< metres

struct Arc {
    double west = 0;
    double east = 0; ///< at least west; beyond 180 when it crosses the date line
};

Arc shortestArc(std::vector<double> longitudes) {
    std::ranges::sort(longitudes);
    const Arc plain{longitudes.front(), longitudes.back()};
    if (plain.east - plain.west <= 180)
        return plain;

    double widestGap = 360 - (plain.east - plain.west);
    Arc arc = plain;
    for (std::size_t i = 1; i < longitudes.size(); ++i) {
        if (const double gap = longitudes[i] - longitudes[i - 1]; gap > widestGap) {
            widestGap = gap;
            arc = {longitudes[i], longitudes[i - 1] + 360};
        }
    }
    return arc;
}

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
    double south = 90;
    double north = -90;
    std::vector<double> longitudes;
    for (const MapCoordinate& position : positions) {
        if (!isOnEarth(position))
            continue;
        south = std::min(south, position.latitude);
        north = std::max(north, position.latitude);
        longitudes.push_back(position.longitude);
    }
    if (longitudes.empty())
        return {{0, 0}, 170, 360};

    const auto [west, east] = shortestArc(std::move(longitudes));
    const double longitude = (west + east) / 2;
    const double minimum = std::isfinite(minimumSpan) ? minimumSpan : 0;
    return {{(south + north) / 2, longitude > 180 ? longitude - 360 : longitude},
            std::max((north - south) * spreadFactor, minimum),
            std::max((east - west) * spreadFactor, minimum)};
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
