// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/map/LandOutlines.h"

#include <QImage>

namespace nightjar {

/// The map that is always there: land, water and a graticule that keeps every zoom from being an empty plane.
class BuiltInMap {
public:
    [[nodiscard]] bool hasLand() const { return !m_land.isEmpty(); }
    /// Takes some milliseconds; any thread.
    [[nodiscard]] QImage draw(const TileKey& tile, int pixels, bool isDark) const;

private:
    LandOutlines m_land;
};

} // namespace nightjar
