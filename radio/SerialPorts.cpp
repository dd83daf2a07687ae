// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "radio/SerialPorts.h"

#include "core/bridge/MeshtasticSerialPort.h"

#include <algorithm>

namespace nightjar::SerialPorts {
namespace {

std::string_view lastComponent(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    const auto slash = path.find_last_of('/');
    return slash == std::string_view::npos || path.size() == 1 ? path : path.substr(slash + 1);
}

/// The last piece between dashes; a name without a dash is its own last piece, one of nothing but dashes has
/// none.
std::string_view lastPiece(std::string_view name) {
    while (name.ends_with('-'))
        name.remove_suffix(1);
    const auto dash = name.find_last_of('-');
    return dash == std::string_view::npos ? name : name.substr(dash + 1);
}

std::string_view baseName(std::string_view name) {
    if (name.find("SLAB_USB") != std::string_view::npos)
        return "Silicon Labs USB device";
    if (name.find("wchusbserial") != std::string_view::npos)
        return "WCH USB device";
    return "USB device";
}

} // namespace

std::vector<std::string> availablePorts(const HostEnvironment& host) {
    std::vector<std::string> ports;
    for (const auto& name : host.deviceNames()) {
        if (MeshtasticSerialPort::isSupportedDeviceName(name))
            ports.push_back((host.deviceFolder() / name).string());
    }
    std::ranges::sort(ports);
    return ports;
}

std::string displayName(std::string_view path) {
    const auto name = lastComponent(path);
    std::string text(baseName(name));
    if (const auto suffix = lastPiece(name); !suffix.empty())
        text.append(" · ").append(suffix);
    return text;
}

} // namespace nightjar::SerialPorts
