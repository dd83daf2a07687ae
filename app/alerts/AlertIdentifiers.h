// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Date.h"
#include "core/base/Uuid.h"

#include <string>
#include <string_view>

/// The identifiers of everything that is posted to the notification centre. Those with a time are new for
/// each alert; the others are reused, and a later notification takes the place of the earlier one.
namespace nightjar::AlertIdentifiers {

[[nodiscard]] std::string message(const Uuid& message);
[[nodiscard]] bool isMessage(std::string_view identifier);
[[nodiscard]] std::string guardedDeviceMoved(Date now);
[[nodiscard]] std::string bluetoothLost(const Uuid& device, Date now);
[[nodiscard]] std::string bluetoothReturned(const Uuid& device, Date now);
[[nodiscard]] std::string localNetworkLeft(std::string_view device);
[[nodiscard]] std::string localNetworkReturned(std::string_view device);

} // namespace nightjar::AlertIdentifiers
