// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/map/TileKey.h"

#include <QByteArrayView>
#include <QPolygonF>

#include <cstdint>
#include <vector>

namespace nightjar {

/// The outlines of all land, as tools/basemap makes them: levels of detail, cut into cells, so that a tile
/// reads only what it shows and nothing is kept unpacked. Any thread.
class LandOutlines {
public:
    /// The outlines that the program brings along; none when it was built without them.
    LandOutlines();
    /// `data` must outlive it. What is not such a file has no outlines.
    explicit LandOutlines(QByteArrayView data);

    [[nodiscard]] bool isEmpty() const { return m_levels.empty(); }
    /// The rings round a tile in units of its width from its north-west corner, cut off a little outside of
    /// it. To be filled by the odd-even rule.
    [[nodiscard]] std::vector<QPolygonF> around(const TileKey& tile) const;

private:
    struct Level {
        int firstZoom = 0;
        int cellZoom = 0;
        std::uint32_t directory = 0;
    };

    [[nodiscard]] std::uint32_t word(qsizetype offset) const;

    QByteArrayView m_data;
    std::vector<Level> m_levels;
};

} // namespace nightjar
