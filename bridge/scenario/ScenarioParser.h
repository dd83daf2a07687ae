// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridge/scenario/Scenario.h"

#include <expected>
#include <string>
#include <string_view>

namespace nightjar::bridge {

/// Reads the text of a scenario file, whose form docs/bridge.md describes. Strict: an unknown key, a wrong
/// type or a value out of range gives a sentence that names the place.
[[nodiscard]] std::expected<Scenario, std::string> parseScenario(std::string_view text);

} // namespace nightjar::bridge
