// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/mesh/MeshNode.h"

namespace nightjar {

MeshNodeReachability MeshNode::reachability(Date now, Seconds window) const {
    if (!lastSeen || now - *lastSeen > window)
        return MeshNodeReachability::stale();
    if (hopsAway == 0u)
        return MeshNodeReachability::directlyHeard();
    return MeshNodeReachability::mesh(hopsAway);
}

} // namespace nightjar
