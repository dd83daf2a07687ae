// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/map/MapGeometry.h"

#include <vector>

namespace nightjar {

/// A way over the ground, made simple enough for the zoom it is drawn at. GUI thread.
class TrailLine {
public:
    static constexpr qsizetype mostDrawn = 3'000; ///< points in all pieces together

    /// False when it is the same way as before.
    bool set(const std::vector<MapCoordinate>& coordinates);
    [[nodiscard]] bool isEmpty() const { return m_points.size() < 2; }
    /// The pieces that touch a part of the Mercator square; the part may reach over the date line.
    [[nodiscard]] std::vector<QPolygonF> pieces(const QRectF& part, double worldSize);

private:
    void simplify(int level);

    std::vector<MapCoordinate> m_coordinates;
    QPolygonF m_points; ///< on the Mercator square, running on across the date line
    QRectF m_extent;
    QPolygonF m_simple;
    int m_level = -1;
};

} // namespace nightjar
