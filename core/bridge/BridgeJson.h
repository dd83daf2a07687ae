// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/bridge/MeshtasticBridge.h"
#include "core/json/Decoder.h"
#include "core/json/Schema.h"

#include <expected>
#include <optional>
#include <string>
#include <string_view>

namespace nightjar {

namespace json {
template <>
const Schema& schemaOf<MeshtasticRadioSettings>();
template <>
const Schema& schemaOf<MeshtasticBridgeRequest>();
template <>
const Schema& schemaOf<MeshtasticBridgeResponse>();
} // namespace json

/// The line of a request, with its line feed; a sentence where a value cannot be written.
[[nodiscard]] std::expected<std::string, std::string> encodeLine(const MeshtasticBridgeRequest& request);
/// The line of a response, with its line feed; used by bridges.
[[nodiscard]] std::expected<std::string, std::string> encodeLine(const MeshtasticBridgeResponse& response);

/// A decoder for the lines of either direction.
[[nodiscard]] json::Decoder makeBridgeDecoder();

} // namespace nightjar
