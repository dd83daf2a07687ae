// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/network/LocalNetworkDevice.h"
#include "ui/rows/Row.h"

#include <QString>

#include <string>
#include <vector>

/// What the views tell of the devices of the local network. Names come from the network.
namespace nightjar {

/// `lastSeen` as a relative time.
[[nodiscard]] Row localNetworkDeviceRow(const LocalNetworkDevice& device, const QString& lastSeen);
/// The sidebar: each device once, in the order given.
[[nodiscard]] std::vector<RowSection> localNetworkSections(const std::vector<LocalNetworkDevice>& devices);
/// The selection stays while its device is known; else it is the first tracked one, or none (empty).
[[nodiscard]] std::string
selectFirstTrackedLocalNetworkDeviceIfNeeded(const std::string& selectedID,
                                             const std::vector<LocalNetworkDevice>& devices);

[[nodiscard]] QString kindSymbol(const LocalNetworkDevice& device);
[[nodiscard]] QString domainText(const LocalNetworkDevice& device);
[[nodiscard]] QString interfaceText(const LocalNetworkDevice& device);

} // namespace nightjar
