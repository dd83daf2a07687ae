// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "radio/BridgeLocator.h"

#include <algorithm>

namespace nightjar::BridgeLocator {

std::vector<std::filesystem::path> candidates(const HostEnvironment& host) {
    const std::filesystem::path inBundle =
        "Halvard Meshtastic Bridge.app/Contents/MacOS/HalvardMeshtasticBridge";

    std::vector<std::filesystem::path> paths;
    if (const auto path = host.environmentVariable("HALVARD_MESHTASTIC_BRIDGE_PATH");
        path && !path->empty()) {
        paths.emplace_back(*path);
    }
    if (const auto folder = host.applicationSupportFolder()) {
        paths.push_back(*folder / "Halvard Nightjar/Bridge" / "HalvardMeshtasticBridge");
    }
    paths.push_back("/Applications" / inBundle);
    if (const auto folder = host.bundleParentFolder())
        paths.push_back(*folder / inBundle);
    paths.emplace_back("/opt/homebrew/bin/halvard-meshtastic-bridge");
    paths.emplace_back("/usr/local/bin/halvard-meshtastic-bridge");
    return paths;
}

std::optional<std::filesystem::path> installedBridgeURL(const HostEnvironment& host) {
    const auto paths = candidates(host);
    const auto found =
        std::ranges::find_if(paths, [&](const auto& path) { return host.isExecutableFile(path); });
    if (found == paths.end())
        return std::nullopt;
    return *found;
}

std::string bridgeStatus(const HostEnvironment& host) {
    return installedBridgeURL(host) ? "Installed" : "Not installed";
}

} // namespace nightjar::BridgeLocator
