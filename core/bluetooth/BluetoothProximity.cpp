// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/bluetooth/BluetoothProximity.h"

#include <algorithm>
#include <cstddef>

namespace nightjar {

namespace {

template <class Case>
std::optional<Case> caseNamed(std::string_view text, const std::array<std::string_view, 4>& names) {
    const auto* const found = std::ranges::find(names, text);
    if (found == names.end())
        return std::nullopt;
    return static_cast<Case>(found - names.begin());
}

} // namespace

BluetoothProximityBand bluetoothProximityBand(double rssi) {
    using enum BluetoothProximityBand;
    if (rssi >= -50.0)
        return veryClose;
    if (rssi >= -65.0)
        return nearby;
    return rssi >= -78.0 ? fartherAway : weak;
}

std::string_view rawValue(BluetoothProximityBand band) {
    return bluetoothProximityBandNames[static_cast<std::size_t>(band)];
}

std::optional<BluetoothProximityBand> bluetoothProximityBandFromRawValue(std::string_view text) {
    return caseNamed<BluetoothProximityBand>(text, bluetoothProximityBandNames);
}

std::string_view title(BluetoothProximityBand band) {
    static constexpr std::array<std::string_view, 4> titles{"Very close", "Nearby", "Farther away",
                                                            "Weak signal"};
    return titles[static_cast<std::size_t>(band)];
}

std::string_view rawValue(BluetoothProximityTrend trend) {
    return bluetoothProximityTrendNames[static_cast<std::size_t>(trend)];
}

std::optional<BluetoothProximityTrend> bluetoothProximityTrendFromRawValue(std::string_view text) {
    return caseNamed<BluetoothProximityTrend>(text, bluetoothProximityTrendNames);
}

std::string_view text(BluetoothProximityTrend trend, BluetoothProximityBand band) {
    switch (trend) {
    case BluetoothProximityTrend::acquiring:
        return "Measuring signal…";
    case BluetoothProximityTrend::warmer:
        return "Warmer · getting closer";
    case BluetoothProximityTrend::colder:
        return "Colder · moving away";
    case BluetoothProximityTrend::steady:
        break;
    }
    return title(band);
}

std::string_view systemImage(BluetoothProximityTrend trend) {
    static constexpr std::array<std::string_view, 4> images{"waveform.path.ecg", "arrow.up.right", "equal",
                                                            "arrow.down.right"};
    return images[static_cast<std::size_t>(trend)];
}

} // namespace nightjar
