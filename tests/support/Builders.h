// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/mesh/MeshMessage.h"
#include "core/mesh/MeshNode.h"
#include "core/mesh/MeshPosition.h"

#include <string>
#include <utility>

/// Records with one field that matters each: `node(42).named("Fox").at(52.1, 5.3)`.
namespace nightjar::testing {

/// 2025-05-01 12:00:00 UTC, at which the fake scheduler starts.
inline constexpr Date startDate = dateFromUnixSeconds(1'746'100'800);

/// A fix of its own identity.
[[nodiscard]] inline MeshPosition positionAt(double latitude, double longitude,
                                             Seconds afterStart = Seconds{0}, std::uint32_t number = 42) {
    return {.id = Uuid::random(),
            .nodeNumber = number,
            .latitude = latitude,
            .longitude = longitude,
            .altitude = {},
            .timestamp = startDate + afterStart};
}

/// Metres north of (52, 5), along the meridian: one degree is 111,194.9 m.
[[nodiscard]] inline MeshPosition metresNorth(double metres, Seconds afterStart = Seconds{0},
                                              std::uint32_t number = 42) {
    return positionAt(52 + metres / 111'194.92664455873, 5, afterStart, number);
}

class NodeBuilder {
public:
    explicit NodeBuilder(std::uint32_t number) { m_node.number = number; }

    NodeBuilder& named(std::string longName) { return m_node.longName = std::move(longName), *this; }
    NodeBuilder& shortNamed(std::string shortName) { return m_node.shortName = std::move(shortName), *this; }
    NodeBuilder& at(const MeshPosition& position) { return m_node.position = position, *this; }
    NodeBuilder& at(double latitude, double longitude) {
        return at(positionAt(latitude, longitude, Seconds{0}, m_node.number));
    }
    NodeBuilder& seen(Date date) { return m_node.lastSeen = date, *this; }
    NodeBuilder& hops(std::uint32_t count) { return m_node.hopsAway = count, *this; }

    operator MeshNode() const { return m_node; } // NOLINT(google-explicit-constructor)

private:
    MeshNode m_node;
};

[[nodiscard]] inline NodeBuilder node(std::uint32_t number) {
    return NodeBuilder(number);
}

/// A message of the mesh that says `text`.
[[nodiscard]] inline MeshMessage received(std::string text, std::uint32_t packetID = 0,
                                          std::uint32_t sender = 42) {
    return {.id = Uuid::random(),
            .packetID = packetID,
            .sender = sender,
            .recipient = broadcastNodeNumber,
            .channel = 0,
            .text = std::move(text),
            .timestamp = startDate,
            .isOutgoing = false};
}

} // namespace nightjar::testing
