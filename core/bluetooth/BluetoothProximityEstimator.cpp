// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/bluetooth/BluetoothProximityEstimator.h"

#include <algorithm>
#include <array>

namespace nightjar {

namespace {

constexpr int leastSamples = 4;
/// How many readings a median is taken of.
constexpr std::size_t window = 5;
/// dB between the oldest and the newest readings.
constexpr double notableChange = 4.0;

} // namespace

BluetoothProximityEstimator::BluetoothProximityEstimator(int maximumSamples)
    : m_maximumSamples(std::max(maximumSamples, leastSamples)) {}

std::optional<BluetoothProximitySnapshot> BluetoothProximityEstimator::add(int rssi) {
    if (!accepts(rssi))
        return std::nullopt;
    // The oldest goes first: the string never holds more than it has room for.
    if (m_values.size() == static_cast<std::size_t>(m_maximumSamples))
        m_values.erase(0, 1);
    m_values.push_back(static_cast<char>(rssi));

    const auto newest = std::min(m_values.size(), window);
    const double smoothed = medianOf(m_values.size() - newest, newest);
    return BluetoothProximitySnapshot{.rawRSSI = rssi,
                                      .smoothedRSSI = smoothed,
                                      .trend = trend(smoothed),
                                      .band = bluetoothProximityBand(smoothed),
                                      .sampleCount = static_cast<std::int32_t>(m_values.size())};
}

BluetoothProximityTrend BluetoothProximityEstimator::trend(double smoothed) const {
    using enum BluetoothProximityTrend;
    if (m_values.size() < window)
        return acquiring;
    const double difference = smoothed - medianOf(0, window);
    if (difference >= notableChange)
        return warmer;
    return difference <= -notableChange ? colder : steady;
}

double BluetoothProximityEstimator::medianOf(std::size_t first, std::size_t count) const {
    std::array<std::int8_t, window> sorted{};
    for (std::size_t i = 0; i < count; ++i)
        sorted[i] = static_cast<std::int8_t>(m_values[first + i]);
    std::sort(sorted.begin(), sorted.begin() + static_cast<std::ptrdiff_t>(count));
    const auto middle = count / 2;
    return count % 2 == 1 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2.0;
}

} // namespace nightjar
