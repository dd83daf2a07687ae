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

/// Of 1 to 5 readings.
double median(std::span<const std::int8_t> readings) {
    std::array<std::int8_t, window> sorted{};
    std::size_t count = 0;
    for (const auto reading : readings) {
        auto at = count++;
        for (; at > 0 && sorted[at - 1] > reading; --at)
            sorted[at] = sorted[at - 1];
        sorted[at] = reading;
    }
    const auto middle = readings.size() / 2;
    return readings.size() % 2 == 1 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2.0;
}

BluetoothProximityTrend trend(std::span<const std::int8_t> readings, double smoothed) {
    using enum BluetoothProximityTrend;
    if (readings.size() < window)
        return acquiring;
    const double difference = smoothed - median(readings.first(window));
    if (difference >= notableChange)
        return warmer;
    return difference <= -notableChange ? colder : steady;
}

} // namespace

BluetoothProximityEstimator::BluetoothProximityEstimator(int maximumSamples)
    : m_maximumSamples(std::max(maximumSamples, leastSamples)) {
    if (m_maximumSamples > static_cast<int>(m_few.size()))
        m_many = std::make_unique<std::vector<Reading>>();
}

BluetoothProximityEstimator::BluetoothProximityEstimator(const BluetoothProximityEstimator& other)
    : m_maximumSamples(other.m_maximumSamples),
      m_fewCount(other.m_fewCount),
      m_few(other.m_few),
      m_many(other.m_many ? std::make_unique<std::vector<Reading>>(*other.m_many) : nullptr) {}

BluetoothProximityEstimator&
BluetoothProximityEstimator::operator=(const BluetoothProximityEstimator& other) {
    return *this = BluetoothProximityEstimator(other);
}

void BluetoothProximityEstimator::reset() {
    m_fewCount = 0;
    if (m_many)
        m_many->clear();
}

std::optional<BluetoothProximitySnapshot> BluetoothProximityEstimator::add(int rssi) {
    if (!accepts(rssi))
        return std::nullopt;
    append(static_cast<Reading>(rssi));
    const auto readings = values();
    const double smoothed = median(readings.last(std::min(readings.size(), window)));
    return BluetoothProximitySnapshot{.rawRSSI = rssi,
                                      .smoothedRSSI = smoothed,
                                      .trend = trend(readings, smoothed),
                                      .band = bluetoothProximityBand(smoothed),
                                      .sampleCount = static_cast<std::int32_t>(readings.size())};
}

void BluetoothProximityEstimator::append(Reading reading) {
    const bool isFull = values().size() == static_cast<std::size_t>(m_maximumSamples);
    if (m_many) {
        if (isFull)
            m_many->erase(m_many->begin());
        m_many->push_back(reading);
        return;
    }
    if (isFull)
        std::copy(m_few.begin() + 1, m_few.begin() + m_fewCount--, m_few.begin());
    m_few[m_fewCount++] = reading;
}

std::span<const BluetoothProximityEstimator::Reading> BluetoothProximityEstimator::values() const {
    return m_many ? std::span<const Reading>(*m_many) : std::span(m_few).first(m_fewCount);
}

} // namespace nightjar
