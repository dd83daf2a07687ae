// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Uuid.h"
#include "platform/BluetoothCentral.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// The sentences of the Bluetooth side.
namespace nightjar::BluetoothTexts {

inline constexpr std::string_view starting = "Bluetooth is starting…";
inline constexpr std::string_view looking = "Looking for Bluetooth devices…";

[[nodiscard]] std::string_view radioState(BluetoothRadioState state);
[[nodiscard]] std::string found(std::size_t count);
[[nodiscard]] std::string_view stopped(bool hasDevices);
/// `name` is null for a device that was not heard.
[[nodiscard]] std::string finding(const std::string* name);
[[nodiscard]] std::string liveSignal(int rssi);

/// The name of a device that has none.
using MadeUpName = std::array<char, 21>;
[[nodiscard]] MadeUpName madeUpName(const Uuid& id);

/// "30 seconds", "2 minutes": whole units, the fraction dropped.
[[nodiscard]] std::string lossDelayDescription(double seconds);

} // namespace nightjar::BluetoothTexts
