// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/mesh/MeshPosition.h"

namespace nightjar::MeshMath {

/// Great-circle distance in metres: the haversine formula on a sphere of radius 6,371,000 m. Altitude is
/// ignored.
[[nodiscard]] double distanceMeters(const MeshPosition& from, const MeshPosition& to);

} // namespace nightjar::MeshMath
