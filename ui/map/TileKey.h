// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHashFunctions>

namespace nightjar {

/// One square of the usual grid: 2^zoom columns from west to east, as many rows from north to south.
struct TileKey {
    int zoom = 0;
    int column = 0;
    int row = 0;

    bool operator==(const TileKey&) const = default;

    [[nodiscard]] TileKey ancestor(int levels) const {
        return {zoom - levels, column >> levels, row >> levels};
    }
};

inline size_t qHash(const TileKey& key, size_t seed = 0) {
    return qHashMulti(seed, key.zoom, key.column, key.row);
}

} // namespace nightjar
