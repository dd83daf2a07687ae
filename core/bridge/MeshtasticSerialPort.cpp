// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/bridge/MeshtasticSerialPort.h"

#include <algorithm>
#include <array>

namespace nightjar::MeshtasticSerialPort {

bool isSupportedDeviceName(std::string_view name) {
    constexpr std::array<std::string_view, 4> prefixes{"cu.usbmodem", "cu.usbserial", "cu.SLAB_USB",
                                                       "cu.wchusbserial"};
    return std::ranges::any_of(prefixes, [&](std::string_view prefix) { return name.starts_with(prefix); });
}

} // namespace nightjar::MeshtasticSerialPort
