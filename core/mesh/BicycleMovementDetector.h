// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/mesh/MeshPosition.h"

#include <optional>
#include <variant>

namespace nightjar {

namespace BicycleMovement {
struct Inside {
    double distance; ///< metres
    bool operator==(const Inside&) const = default;
};
struct Confirming {
    double distance; ///< metres
    int count;
    int required;
    bool operator==(const Confirming&) const = default;
};
struct Moved {
    double distance; ///< metres
    bool operator==(const Moved&) const = default;
};
struct Ignored {
    bool operator==(const Ignored&) const = default;
};
} // namespace BicycleMovement

/// What one position says: within the radius; outside but not yet confirmed; moved; or not evaluated (old,
/// repeated).
using BicycleMovementResult = std::variant<BicycleMovement::Inside, BicycleMovement::Confirming,
                                           BicycleMovement::Moved, BicycleMovement::Ignored>;

/// Counts successive new positions outside the marked area, so that one outlier is no movement.
class BicycleMovementDetector {
public:
    /// Fewer than 2 required positions are raised to 2.
    explicit BicycleMovementDetector(int requiredOutsidePositions = 2);

    [[nodiscard]] BicycleMovementResult evaluate(const MeshPosition& position, const MeshPosition& parkedAt,
                                                 double radius);
    void reset();

    [[nodiscard]] int requiredOutsidePositions() const { return m_requiredOutsidePositions; }

private:
    struct Coordinate {
        double latitude;
        double longitude;
        bool operator==(const Coordinate&) const = default;
    };

    int m_requiredOutsidePositions;
    int m_outsideCount = 0;
    std::optional<Coordinate> m_lastCoordinate;
};

} // namespace nightjar
