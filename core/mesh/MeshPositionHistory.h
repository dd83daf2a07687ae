// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/mesh/MeshPosition.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace nightjar::MeshPositionHistory {

/// The fixes of one node at or after `since` (all of them when absent), oldest first; equal times keep their
/// order.
[[nodiscard]] std::vector<MeshPosition>
positions(std::uint32_t nodeNumber, std::span<const MeshPosition> history, std::optional<Date> since);

} // namespace nightjar::MeshPositionHistory
