// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/mesh/MeshMath.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace nightjar::MeshMath {

double distanceMeters(const MeshPosition& from, const MeshPosition& to) {
    constexpr double earthDiameter = 12'742'000.0;
    constexpr double radiansPerDegree = std::numbers::pi / 180;
    const double phi1 = from.latitude * radiansPerDegree;
    const double phi2 = to.latitude * radiansPerDegree;
    const double sinHalfPhi = std::sin((phi2 - phi1) / 2);
    const double sinHalfLambda = std::sin((to.longitude - from.longitude) * radiansPerDegree / 2);
    const double a =
        sinHalfPhi * sinHalfPhi + std::cos(phi1) * std::cos(phi2) * sinHalfLambda * sinHalfLambda;
    // Between antipodes rounding can carry `a` past 1, and the root of a negative number is no distance.
    return earthDiameter * std::atan2(std::sqrt(a), std::sqrt(std::max(1 - a, 0.0)));
}

} // namespace nightjar::MeshMath
