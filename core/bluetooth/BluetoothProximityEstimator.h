// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/bluetooth/BluetoothProximity.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace nightjar {

struct BluetoothProximitySnapshot {
    std::int32_t rawRSSI = 0; ///< dBm, the reading just added
    double smoothedRSSI = 0;  ///< dBm, the median of the newest readings
    BluetoothProximityTrend trend = BluetoothProximityTrend::acquiring;
    BluetoothProximityBand band = BluetoothProximityBand::weak;
    std::int32_t sampleCount = 0; ///< readings held, this one included

    bool operator==(const BluetoothProximitySnapshot&) const = default;
};

/// Steadies the signal readings of one device and tells whether it comes closer. There may be millions of
/// them: up to ten readings are held without an allocation.
class BluetoothProximityEstimator {
public:
    /// Holds the newest `maximumSamples` readings, but never fewer than 4.
    explicit BluetoothProximityEstimator(int maximumSamples);
    ~BluetoothProximityEstimator() = default;
    BluetoothProximityEstimator(const BluetoothProximityEstimator& other);
    BluetoothProximityEstimator& operator=(const BluetoothProximityEstimator& other);
    BluetoothProximityEstimator(BluetoothProximityEstimator&&) noexcept = default;
    BluetoothProximityEstimator& operator=(BluetoothProximityEstimator&&) noexcept = default;

    /// Whether a reading says anything: from -127 to -1 dBm.
    [[nodiscard]] static constexpr bool accepts(int rssi) { return rssi >= -127 && rssi <= -1; }

    void reset();
    /// Adds a reading in dBm; absent when it is not accepted.
    [[nodiscard]] std::optional<BluetoothProximitySnapshot> add(int rssi);

private:
    using Reading = std::int8_t;

    void append(Reading reading);
    /// Oldest first.
    [[nodiscard]] std::span<const Reading> values() const;

    std::int32_t m_maximumSamples;
    std::uint8_t m_fewCount = 0;
    std::array<Reading, 10> m_few{};
    std::unique_ptr<std::vector<Reading>> m_many; ///< instead, where more may be held
};

} // namespace nightjar
