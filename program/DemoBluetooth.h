// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/simulated/BluetoothWorld.h"

#include <string_view>
#include <vector>

namespace nightjar {

/// The tag that the demo's user watches: it is carried out of range and back within a minute.
inline constexpr std::string_view demoKeysName = "Keys";

/// What advertises in the demo's house.
[[nodiscard]] std::vector<SimulatedPeripheral> demoPeripherals();

} // namespace nightjar
