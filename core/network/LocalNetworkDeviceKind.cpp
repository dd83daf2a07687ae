// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/network/LocalNetworkDeviceKind.h"

#include <algorithm>

namespace nightjar {

std::optional<LocalNetworkDeviceKind> localNetworkDeviceKindFrom(std::string_view rawValue) {
    const auto found = std::ranges::find(localNetworkDeviceKindNames, rawValue);
    if (found == localNetworkDeviceKindNames.end())
        return std::nullopt;
    return static_cast<LocalNetworkDeviceKind>(found - localNetworkDeviceKindNames.begin());
}

std::string_view symbolName(LocalNetworkDeviceKind kind) {
    switch (kind) {
    case LocalNetworkDeviceKind::computer:
        return "desktopcomputer";
    case LocalNetworkDeviceKind::laptop:
        return "laptopcomputer";
    case LocalNetworkDeviceKind::television:
        return "appletv.fill";
    case LocalNetworkDeviceKind::speaker:
        return "hifispeaker.fill";
    case LocalNetworkDeviceKind::printer:
        return "printer.fill";
    case LocalNetworkDeviceKind::storage:
        return "externaldrive.connected.to.line.below.fill";
    case LocalNetworkDeviceKind::generic:
        break;
    }
    return "network";
}

} // namespace nightjar
