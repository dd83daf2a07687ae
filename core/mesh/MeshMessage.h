// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Date.h"
#include "core/base/Uuid.h"

#include <cstdint>
#include <string>

namespace nightjar {

/// The recipient number that addresses all nodes.
inline constexpr std::uint32_t broadcastNodeNumber = 0xFFFF'FFFF;

/// One text message, received or sent.
struct MeshMessage {
    Uuid id;
    std::uint32_t packetID = 0; ///< 0 where the mesh gave none
    std::uint32_t sender = 0;
    std::uint32_t recipient = 0;
    std::uint32_t channel = 0;
    std::string text;
    Date timestamp{};
    bool isOutgoing = false;

    bool operator==(const MeshMessage&) const = default;
};

/// Whether the mesh delivered `message` a second time: the same non-zero packet of the same sender.
[[nodiscard]] inline bool isRepeat(const MeshMessage& message, const MeshMessage& known) {
    return message.packetID != 0 && message.packetID == known.packetID && message.sender == known.sender;
}

} // namespace nightjar
