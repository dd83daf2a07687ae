// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/window/NetworkSection.h"

#include <algorithm>

namespace nightjar {

namespace {

constexpr std::string_view key = "main.selectedNetwork";

} // namespace

NetworkSection savedNetworkSection(const Preferences& preferences) {
    const auto* found = std::ranges::find(networkSectionNames, preferences.string(key).value_or(""));
    return found == networkSectionNames.end()
               ? NetworkSection::meshtastic
               : static_cast<NetworkSection>(found - networkSectionNames.begin());
}

void saveNetworkSection(Preferences& preferences, NetworkSection section) {
    preferences.setString(key, networkSectionNames[static_cast<std::size_t>(section)]);
}

} // namespace nightjar
