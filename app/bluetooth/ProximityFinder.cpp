// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/bluetooth/ProximityFinder.h"

#include <algorithm>
#include <chrono>

namespace nightjar {

namespace {

using namespace std::chrono_literals;

/// After this a device counts as lost, and makes no sound.
constexpr auto signalLostAfter = 5s;
constexpr auto silenceBeforeScan = 2s;

/// The least time between two cues; a weak signal has none.
std::optional<std::chrono::milliseconds> cueInterval(BluetoothProximityBand band) {
    switch (band) {
    case BluetoothProximityBand::veryClose:
        return 350ms;
    case BluetoothProximityBand::nearby:
        return 700ms;
    case BluetoothProximityBand::fartherAway:
        return 1200ms;
    case BluetoothProximityBand::weak:
        break;
    }
    return std::nullopt;
}

} // namespace

bool ProximityFinder::start(const Uuid& id) {
    const auto generation = ++m_generation;
    m_trackedID.set(id);
    if (generation == m_generation)
        m_isFinding.set(true);
    return generation == m_generation;
}

bool ProximityFinder::stop() {
    const auto generation = ++m_generation;
    m_isFinding.set(false);
    if (generation == m_generation)
        m_trackedID.set({});
    return generation == m_generation;
}

bool ProximityFinder::soundIsDue(BluetoothProximityBand band, SteadyTime heardAt, SteadyTime now) {
    if (!isSoundEnabled() || now - heardAt > signalLostAfter)
        return false;
    const auto interval = cueInterval(band);
    if (!interval || (m_lastFinderSound && now - *m_lastFinderSound < *interval))
        return false;
    m_lastFinderSound = now;
    return true;
}

bool ProximityFinder::scanIsDue(std::optional<SteadyTime> heardAt, SteadyTime now) const {
    return now - std::max(heardAt.value_or(m_scannedAt), m_scannedAt) >= silenceBeforeScan;
}

} // namespace nightjar
