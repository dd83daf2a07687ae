// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/mesh/MeshPosition.h"

#include <cstdint>
#include <optional>
#include <string>

namespace nightjar {

/// How a node is currently reached.
struct MeshNodeReachability {
    enum class Kind { mesh, directlyHeard, stale };
    Kind kind = Kind::stale;
    std::optional<std::uint32_t> hops; ///< of `mesh` only; absent when unknown

    [[nodiscard]] static MeshNodeReachability mesh(std::optional<std::uint32_t> hops) {
        return {Kind::mesh, hops};
    }
    [[nodiscard]] static MeshNodeReachability directlyHeard() { return {Kind::directlyHeard, {}}; }
    [[nodiscard]] static MeshNodeReachability stale() { return {Kind::stale, {}}; }

    bool operator==(const MeshNodeReachability&) const = default;
};

/// How long after it was last heard a node still counts as reached.
inline constexpr Seconds nearbyWindow{3600};

/// One mesh node as last reported, identified by its `number`.
struct MeshNode {
    std::uint32_t number = 0;
    std::string longName;
    std::string shortName;
    std::string hardware;
    std::optional<std::uint32_t> batteryLevel;
    std::optional<float> voltage;
    std::optional<float> signalToNoise;
    std::optional<std::uint32_t> hopsAway; ///< 0 = heard directly by the base radio
    std::optional<Date> lastSeen;
    std::optional<MeshPosition> position;

    [[nodiscard]] std::uint32_t id() const { return number; }
    [[nodiscard]] MeshNodeReachability reachability(Date now, Seconds window = nearbyWindow) const;

    bool operator==(const MeshNode&) const = default;
};

} // namespace nightjar
