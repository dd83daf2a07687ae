// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Uuid.h"
#include "core/bridge/MeshtasticRadioSettings.h"
#include "core/mesh/MeshMessage.h"
#include "core/mesh/MeshNode.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nightjar {

/// The one version of the line protocol that is spoken and accepted.
inline constexpr std::int64_t meshtasticBridgeProtocolVersion = 1;

namespace MeshtasticConnectionTiming {
/// How long a bridge may take to shake hands with its radio; for bridges, not consulted by the client.
inline constexpr double bridgeHandshakeSeconds = 8.0;
/// How long the client waits for the answer to `connect`.
inline constexpr double clientResponseSeconds = 15.0;
} // namespace MeshtasticConnectionTiming

enum class MeshtasticBridgeCommand { connect, disconnect, sendText, readRadioSettings, applyRadioSettings };
inline constexpr std::array<std::string_view, 5> meshtasticBridgeCommandNames{
    "connect", "disconnect", "sendText", "readRadioSettings", "applyRadioSettings"};

enum class MeshtasticBridgeEvent {
    ready,
    connected,
    disconnected,
    status,
    localNode,
    node,
    channel,
    message,
    radioSettings,
    sent,
    error
};
inline constexpr std::array<std::string_view, 11> meshtasticBridgeEventNames{
    "ready",   "connected", "disconnected",  "status", "localNode", "node",
    "channel", "message",   "radioSettings", "sent",   "error"};

/// One line from the client to the bridge.
struct MeshtasticBridgeRequest {
    std::int64_t protocolVersion = meshtasticBridgeProtocolVersion;
    Uuid requestID{};
    MeshtasticBridgeCommand command = MeshtasticBridgeCommand::connect;
    std::optional<std::string> port{};
    std::optional<std::string> text{};
    std::optional<std::uint32_t> recipient{}; ///< absent when the text goes to the whole channel
    std::optional<std::uint32_t> channel{};
    std::optional<MeshtasticRadioSettings> settings{};

    bool operator==(const MeshtasticBridgeRequest&) const = default;
};

/// One line from the bridge to the client.
struct MeshtasticBridgeResponse {
    std::int64_t protocolVersion = meshtasticBridgeProtocolVersion;
    std::optional<Uuid> requestID{}; ///< the request that this line answers; absent on its own events
    MeshtasticBridgeEvent event = MeshtasticBridgeEvent::ready;
    std::optional<std::string> error{};
    std::optional<std::string> status{};
    std::optional<std::string> port{};
    std::optional<std::uint32_t> localNodeID{};
    std::optional<MeshNode> node{};
    std::optional<std::uint32_t> channel{};
    std::optional<std::string> channelName{};
    std::optional<MeshMessage> message{};
    std::optional<MeshtasticRadioSettings> settings{};
    std::optional<std::uint32_t> packetID{};

    bool operator==(const MeshtasticBridgeResponse&) const = default;
};

} // namespace nightjar
