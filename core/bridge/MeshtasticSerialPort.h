// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace nightjar::MeshtasticSerialPort {

/// Whether a device file name (no folder) is one that Meshtastic radios get. Case-sensitive, start of the
/// name only.
[[nodiscard]] bool isSupportedDeviceName(std::string_view name);

} // namespace nightjar::MeshtasticSerialPort
