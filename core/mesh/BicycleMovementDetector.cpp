// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/mesh/BicycleMovementDetector.h"

#include "core/mesh/MeshMath.h"

#include <algorithm>

namespace nightjar {

BicycleMovementDetector::BicycleMovementDetector(int requiredOutsidePositions)
    : m_requiredOutsidePositions(std::max(requiredOutsidePositions, 2)) {}

BicycleMovementResult BicycleMovementDetector::evaluate(const MeshPosition& position,
                                                        const MeshPosition& parkedAt, double radius) {
    // A radio that reconnects replays the last position it knew; only a newer one says anything.
    if (position.timestamp <= parkedAt.timestamp)
        return BicycleMovement::Ignored{};
    const Coordinate coordinate{position.latitude, position.longitude};
    if (m_lastCoordinate == coordinate)
        return BicycleMovement::Ignored{};
    m_lastCoordinate = coordinate;

    const double distance = MeshMath::distanceMeters(parkedAt, position);
    if (!(distance > radius)) {
        m_outsideCount = 0;
        return BicycleMovement::Inside{distance};
    }
    // The count stays put once confirmed: months outside the area must not overflow it.
    m_outsideCount = std::min(m_outsideCount + 1, m_requiredOutsidePositions);
    if (m_outsideCount < m_requiredOutsidePositions) {
        return BicycleMovement::Confirming{distance, m_outsideCount, m_requiredOutsidePositions};
    }
    return BicycleMovement::Moved{distance};
}

void BicycleMovementDetector::reset() {
    m_outsideCount = 0;
    m_lastCoordinate.reset();
}

} // namespace nightjar
