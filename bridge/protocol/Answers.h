// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/bridge/MeshtasticBridge.h"

#include <optional>
#include <string>

/// The one line that answers each request.
namespace nightjar::bridge {

[[nodiscard]] inline MeshtasticBridgeResponse connectedAnswer(const Uuid& request, std::string port) {
    MeshtasticBridgeResponse answer;
    answer.requestID = request;
    answer.event = MeshtasticBridgeEvent::connected;
    answer.port = std::move(port);
    return answer;
}

/// Answers a text and also new settings: both are packets that the radio took. An event that clients act on,
/// such as `status` or `radioSettings`, would tell them more than that here.
[[nodiscard]] inline MeshtasticBridgeResponse sentAnswer(const Uuid& request, std::uint32_t packetID) {
    MeshtasticBridgeResponse answer;
    answer.requestID = request;
    answer.event = MeshtasticBridgeEvent::sent;
    answer.packetID = packetID;
    return answer;
}

[[nodiscard]] inline MeshtasticBridgeResponse settingsAnswer(const std::optional<Uuid>& request,
                                                             const MeshtasticRadioSettings& settings) {
    MeshtasticBridgeResponse answer;
    answer.requestID = request;
    answer.event = MeshtasticBridgeEvent::radioSettings;
    answer.settings = settings;
    return answer;
}

/// Answers `disconnect`: the bridge is as after its start. A `disconnected` event would tell a client that is
/// already on its way to the next connection that it has lost this one.
[[nodiscard]] inline MeshtasticBridgeResponse releasedAnswer(const Uuid& request) {
    MeshtasticBridgeResponse answer;
    answer.requestID = request;
    answer.event = MeshtasticBridgeEvent::ready;
    return answer;
}

[[nodiscard]] inline MeshtasticBridgeResponse errorAnswer(const std::optional<Uuid>& request,
                                                          std::optional<std::string> sentence) {
    MeshtasticBridgeResponse answer;
    answer.requestID = request;
    answer.event = MeshtasticBridgeEvent::error;
    answer.error = std::move(sentence);
    return answer;
}

} // namespace nightjar::bridge
