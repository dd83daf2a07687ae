// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/bluetooth/BluetoothProximity.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace nightjar {

struct BluetoothProximitySnapshot {
    std::int32_t rawRSSI = 0; ///< dBm, the reading just added
    double smoothedRSSI = 0;  ///< dBm, the median of the newest readings
    BluetoothProximityTrend trend = BluetoothProximityTrend::acquiring;
    BluetoothProximityBand band = BluetoothProximityBand::weak;
    std::int32_t sampleCount = 0; ///< readings held, this one included

    bool operator==(const BluetoothProximitySnapshot&) const = default;
};

/// Steadies the signal readings of one device and tells whether it comes closer.
class BluetoothProximityEstimator {
public:
    /// Holds the newest `maximumSamples` readings, but never fewer than 4.
    explicit BluetoothProximityEstimator(int maximumSamples);

    /// Whether a reading says anything: from -127 to -1 dBm.
    [[nodiscard]] static constexpr bool accepts(int rssi) { return rssi >= -127 && rssi <= -1; }

    void reset() { m_values.clear(); }
    /// Adds a reading in dBm; absent when it is not accepted.
    [[nodiscard]] std::optional<BluetoothProximitySnapshot> add(int rssi);

private:
    [[nodiscard]] double medianOf(std::size_t first, std::size_t count) const;
    [[nodiscard]] BluetoothProximityTrend trend(double smoothed) const;

    std::int32_t m_maximumSamples;
    /// A byte for each reading, oldest first. The usual ten lie in the string itself, without an allocation.
    std::string m_values;
};

} // namespace nightjar
