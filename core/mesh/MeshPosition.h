// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Date.h"
#include "core/base/Uuid.h"

#include <cstdint>
#include <optional>

namespace nightjar {

/// One position fix of one mesh node. Two fixes with equal contents are told apart by their `id`.
struct MeshPosition {
    Uuid id;
    std::uint32_t nodeNumber = 0;
    double latitude = 0;  ///< WGS-84 degrees
    double longitude = 0; ///< WGS-84 degrees
    std::optional<std::int32_t> altitude;
    Date timestamp{};

    bool operator==(const MeshPosition&) const = default;
};

} // namespace nightjar
