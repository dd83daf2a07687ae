// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/BuiltInMap.h"

#include "ui/map/MapGeometry.h"
#include "ui/style/Colors.h"

#include <QPainter>
#include <QPainterPath>

#include <array>
#include <cmath>

namespace nightjar {

namespace {

constexpr double pointsPerTile = 256;
constexpr double smallestMesh = 110; ///< points between two lines of the graticule

/// Degrees. Each divides an earlier one, so lines stay where they are while new ones come in between.
double meshAt(int zoom) {
    constexpr std::array steps{30.0,  15.0, 5.0,   2.5,    1.0,   0.5,    0.25,    0.1,   0.05,
                               0.025, 0.01, 0.005, 0.0025, 0.001, 0.0005, 0.00025, 0.0001};
    const double pointsPerDegree = pointsPerTile * std::ldexp(1.0, zoom) / 360;
    double mesh = steps.front();
    for (const double step : steps)
        if (step * pointsPerDegree >= smallestMesh)
            mesh = step;
    return mesh;
}

void drawGraticule(QPainter& painter, const TileKey& tile, int pixels) {
    const double tiles = std::ldexp(1.0, tile.zoom);
    const double mesh = meshAt(tile.zoom);
    const MapCoordinate northWest = mercator::unproject(QPointF(tile.column, tile.row) / tiles);
    const MapCoordinate southEast = mercator::unproject(QPointF(tile.column + 1, tile.row + 1) / tiles);
    for (double line = std::ceil(northWest.longitude / mesh); line * mesh < southEast.longitude; ++line) {
        const double x = (mercator::project({0, line * mesh}).x() * tiles - tile.column) * pixels;
        painter.drawLine(QPointF(x, 0), QPointF(x, pixels));
    }
    for (double line = std::ceil(southEast.latitude / mesh); line * mesh < northWest.latitude; ++line) {
        const double y = (mercator::project({line * mesh, 0}).y() * tiles - tile.row) * pixels;
        painter.drawLine(QPointF(0, y), QPointF(pixels, y));
    }
}

} // namespace

QImage BuiltInMap::draw(const TileKey& tile, int pixels, bool isDark) const {
    const Colors& colors = isDark ? Colors::dark() : Colors::light();
    const double point = pixels / pointsPerTile;
    QImage image(pixels, pixels, QImage::Format_RGB888); // opaque, and a quarter smaller
    image.fill(colors.water);
    QPainter painter(&image);

    QPainterPath land;
    land.setFillRule(Qt::OddEvenFill);
    for (const QPolygonF& ring : m_land.around(tile)) {
        land.addPolygon(QTransform::fromScale(pixels, pixels).map(ring));
        land.closeSubpath();
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(land, colors.land);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(colors.grid, point));
    drawGraticule(painter, tile, pixels);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.strokePath(land, QPen(colors.coast, point));
    return image;
}

} // namespace nightjar
