// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/LandOutlines.h"

#include "ui/map/MapGeometry.h"

#include <QResource>
#include <QtEndian>

#include <cmath>

namespace nightjar {

namespace {

constexpr qsizetype headSize = 12;
constexpr qsizetype levelSize = 12;
constexpr int maximumCellZoom = 8;
constexpr double unitsPerCell = 8192;
constexpr double overlap = 1.0 / 32; ///< of a tile; the cells overlap by more

QByteArrayView bundled() {
    const QResource resource(QStringLiteral(":/map/land.bin"));
    if (!resource.isValid() || resource.compressionAlgorithm() != QResource::NoCompression)
        return {};
    return {resource.data(), qsizetype(resource.size())};
}

/// Reads varints; past the end everything is zero.
class Steps {
public:
    Steps(QByteArrayView data, qsizetype position) : m_data(data), m_position(position) {}

    [[nodiscard]] std::uint32_t count() {
        std::uint32_t value = 0;
        for (int shift = 0; shift < 32 && m_position < m_data.size(); shift += 7) {
            const auto byte = static_cast<unsigned char>(m_data[m_position++]);
            value |= static_cast<std::uint32_t>(byte & 127) << shift;
            if (byte < 128)
                return value;
        }
        return 0;
    }

    [[nodiscard]] std::int32_t step() {
        const std::uint32_t value = count();
        return static_cast<std::int32_t>(value >> 1) ^ -static_cast<std::int32_t>(value & 1);
    }

    [[nodiscard]] bool hasPoints(std::uint32_t points) const {
        return 2 * static_cast<qsizetype>(points) <= m_data.size() - m_position;
    }

private:
    QByteArrayView m_data;
    qsizetype m_position;
};

} // namespace

LandOutlines::LandOutlines() : LandOutlines(bundled()) {}

LandOutlines::LandOutlines(QByteArrayView data) : m_data(data) {
    if (data.size() < headSize || !data.startsWith(QByteArrayView("NJLAND01")))
        return;
    const std::uint32_t count = word(8);
    for (std::uint32_t i = 0; i < count && headSize + (i + 1) * levelSize <= data.size(); ++i) {
        const qsizetype at = headSize + i * levelSize;
        const Level level{static_cast<int>(word(at)), static_cast<int>(word(at + 4)), word(at + 8)};
        if (level.cellZoom <= level.firstZoom && level.cellZoom >= 0 && level.cellZoom <= maximumCellZoom)
            m_levels.push_back(level);
    }
}

std::uint32_t LandOutlines::word(qsizetype offset) const {
    return offset + 4 <= m_data.size() ? qFromLittleEndian<std::uint32_t>(m_data.data() + offset) : 0;
}

std::vector<QPolygonF> LandOutlines::around(const TileKey& tile) const {
    const Level* level = nullptr;
    for (const Level& candidate : m_levels)
        if (candidate.firstZoom <= tile.zoom)
            level = &candidate;
    if (!level)
        return {};

    const int levelsDown = tile.zoom - level->cellZoom;
    const TileKey cell = tile.ancestor(levelsDown);
    const qsizetype index = (static_cast<qsizetype>(cell.row) << cell.zoom) + cell.column;
    const std::uint32_t offset = word(level->directory + 4 * index);
    if (offset == 0)
        return {};

    const double scale = std::ldexp(1.0, levelsDown);
    const QPointF corner(tile.column - cell.column * scale, tile.row - cell.row * scale);
    const QRectF box(-overlap, -overlap, 1 + 2 * overlap, 1 + 2 * overlap);
    std::vector<QPolygonF> rings;
    Steps steps(m_data, offset);
    for (std::uint32_t ring = steps.count(); ring > 0; --ring) {
        const std::uint32_t points = steps.count();
        if (!steps.hasPoints(points))
            break;
        QPolygonF outline;
        outline.reserve(static_cast<qsizetype>(points));
        std::int32_t x = 0;
        std::int32_t y = 0;
        for (std::uint32_t point = 0; point < points; ++point) {
            x += steps.step();
            y += steps.step();
            outline << QPointF(x, y) * (scale / unitsPerCell) - corner;
        }
        const QRectF extent = outline.boundingRect();
        if (!box.contains(extent))
            outline = extent.intersects(box) ? clippedTo(outline, box) : QPolygonF();
        if (outline.size() > 2)
            rings.push_back(std::move(outline));
    }
    return rings;
}

} // namespace nightjar
