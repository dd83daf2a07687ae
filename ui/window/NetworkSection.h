// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Preferences.h"

#include <array>
#include <string_view>

namespace nightjar {

/// The three watches, in the order of their segments.
enum class NetworkSection { bluetooth, localNetwork, meshtastic };

/// What is kept, and the titles of the segments.
inline constexpr std::array<std::string_view, 3> networkSectionNames{"Bluetooth", "Local Network",
                                                                     "Meshtastic"};

/// The section that was on screen last; the mesh where none was kept.
[[nodiscard]] NetworkSection savedNetworkSection(const Preferences& preferences);
void saveNetworkSection(Preferences& preferences, NetworkSection section);

} // namespace nightjar
