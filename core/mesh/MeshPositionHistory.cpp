// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/mesh/MeshPositionHistory.h"

#include <algorithm>

namespace nightjar::MeshPositionHistory {

std::vector<MeshPosition> positions(std::uint32_t nodeNumber, std::span<const MeshPosition> history,
                                    std::optional<Date> since) {
    std::vector<MeshPosition> kept;
    std::ranges::copy_if(history, std::back_inserter(kept), [&](const MeshPosition& position) {
        return position.nodeNumber == nodeNumber && (!since || position.timestamp >= *since);
    });
    std::ranges::stable_sort(kept, {}, &MeshPosition::timestamp);
    return kept;
}

} // namespace nightjar::MeshPositionHistory
