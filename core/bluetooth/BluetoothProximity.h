// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace nightjar {

/// How far away a device seems, from its smoothed signal.
enum class BluetoothProximityBand : std::uint8_t { veryClose, nearby, fartherAway, weak };
inline constexpr std::array<std::string_view, 4> bluetoothProximityBandNames{"veryClose", "nearby",
                                                                             "fartherAway", "weak"};

/// The band of a signal in dBm: at least -50 is very close, -65 nearby, -78 farther away, all below weak.
[[nodiscard]] BluetoothProximityBand bluetoothProximityBand(double rssi);
[[nodiscard]] std::string_view rawValue(BluetoothProximityBand band);
[[nodiscard]] std::optional<BluetoothProximityBand> bluetoothProximityBandFromRawValue(std::string_view text);
/// "Very close" and so on, for the finder.
[[nodiscard]] std::string_view title(BluetoothProximityBand band);

/// Whether a device comes closer, as far as its signal tells.
enum class BluetoothProximityTrend : std::uint8_t { acquiring, warmer, steady, colder };
inline constexpr std::array<std::string_view, 4> bluetoothProximityTrendNames{"acquiring", "warmer", "steady",
                                                                              "colder"};

[[nodiscard]] std::string_view rawValue(BluetoothProximityTrend trend);
[[nodiscard]] std::optional<BluetoothProximityTrend>
bluetoothProximityTrendFromRawValue(std::string_view text);
/// What the finder says of the trend; of a steady signal it names the band.
[[nodiscard]] std::string_view text(BluetoothProximityTrend trend, BluetoothProximityBand band);
[[nodiscard]] std::string_view systemImage(BluetoothProximityTrend trend);

/// What the finder shows in place of the trend while it does not hear the device.
inline constexpr std::string_view lostSignalText = "Move around to find the signal again";
inline constexpr std::string_view lostSignalSystemImage = "questionmark.circle";

} // namespace nightjar
