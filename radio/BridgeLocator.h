// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/HostEnvironment.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// Where the separately installed bridge program is looked for. Looked up afresh on every call. Any thread.
namespace nightjar::BridgeLocator {

/// Every place in the order of the search, whether anything is there or not.
[[nodiscard]] std::vector<std::filesystem::path> candidates(const HostEnvironment& host);
/// The first candidate that names an existing file which the user may execute.
[[nodiscard]] std::optional<std::filesystem::path> installedBridgeURL(const HostEnvironment& host);
/// "Installed" or "Not installed".
[[nodiscard]] std::string bridgeStatus(const HostEnvironment& host);

} // namespace nightjar::BridgeLocator
