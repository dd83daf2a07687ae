// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/HostEnvironment.h"

#include <string>
#include <string_view>
#include <vector>

/// The USB serial devices that may be Meshtastic radios. Any thread.
namespace nightjar::SerialPorts {

/// Their paths, sorted by code point; empty when the device folder cannot be listed.
[[nodiscard]] std::vector<std::string> availablePorts(const HostEnvironment& host);
/// A name for the user, as in "USB device · 0001".
[[nodiscard]] std::string displayName(std::string_view path);

} // namespace nightjar::SerialPorts
