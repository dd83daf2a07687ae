// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/simulated/NetworkWorld.h"

#include <string_view>
#include <vector>

namespace nightjar {

/// The printer that the demo's user watches: it leaves the network and returns after a
/// minute.
inline constexpr std::string_view demoPrinterName = "Office Printer";
/// The music player that is watched too, and is never away for long.
inline constexpr std::string_view demoSpeakerName = "Kitchen Speaker";

/// What announces itself in the demo's house, on the wire and on the air.
[[nodiscard]] std::vector<SimulatedHost> demoHosts();

} // namespace nightjar
