// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/bluetooth/DiscoveredDevices.h"

#include "app/bluetooth/BluetoothTexts.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

namespace nightjar {

namespace {

using namespace std::chrono_literals;

constexpr auto throttle = 2s;
constexpr int maximumSamples = 10;

/// A scan of three million is gone in a minute, in steps of about a millisecond.
constexpr auto disposalPeriod = 20ms;
constexpr std::size_t disposalStep = 1024;

template <class List>
void dropFront(List& list) {
    for (std::size_t i = 0; i < disposalStep && !list.empty(); ++i)
        list.pop_front();
}

bool advertises(const BluetoothAdvertisement& advertisement, const Uuid& service) {
    const auto& services = advertisement.serviceUUIDs;
    return std::ranges::find(services, service) != services.end();
}

/// The C library gathers freed names and, at some later release of a large block, tidies them all up at once:
/// 80 ms for three million. A large block that is released after each step makes it do so in portions.
void tidyHeap() {
    constexpr std::size_t large = 100'000;
    const auto block = std::make_unique_for_overwrite<char[]>(large);
    // Not to be optimised away.
    static_cast<void>(static_cast<volatile char&>(block[0]) = 0);
}

const std::string* nameIn(const BluetoothAdvertisement& advertisement) {
    const auto& name = advertisement.peripheralName ? advertisement.peripheralName : advertisement.localName;
    return name ? &*name : nullptr;
}

} // namespace

const Uuid& meshtasticService() {
    static const Uuid service = *Uuid::fromText("6BA1B218-15A8-461F-9FA8-5DCAE273EAFD");
    return service;
}

const DiscoveredTracker* DiscoveredDevices::find(const Uuid& id) const {
    const auto place = placeOf(id);
    return place ? &m_scan.devices[*place] : nullptr;
}

std::optional<SteadyTime> DiscoveredDevices::heardAt(const Uuid& id) const {
    return placeOf(id).transform([this](std::size_t place) { return m_scan.receptions[place].heardAt; });
}

bool DiscoveredDevices::admit(const BluetoothAdvertisement& advertisement, SteadyTime now, bool isThrottled) {
    const Uuid& id = advertisement.peripheral;
    if (const auto place = placeOf(id)) {
        // In a crowd the record is far away: it comes while the rest is looked at.
        __builtin_prefetch(&m_scan.devices[*place]);
        auto& processedAt = m_scan.receptions[*place].processedAt;
        if (isThrottled && now - processedAt < throttle)
            return false;
        processedAt = now;
        return true;
    }
    if (isThrottled && wasProcessedUnlisted(id, now))
        return false;
    if (!BluetoothProximityEstimator::accepts(advertisement.rssi))
        noteUnlisted(id, now);
    return true;
}

bool DiscoveredDevices::wasProcessedUnlisted(const Uuid& id, SteadyTime now) const {
    for (const Stamps* stamps : {&m_stamps, &m_olderStamps}) {
        const auto found = stamps->find(id);
        if (found != stamps->end() && now - found->second < throttle)
            return true;
    }
    return std::ranges::any_of(m_formerScans, [&](const FormerScan& former) {
        if (now - former.clearedAt >= throttle)
            return false;
        const auto place = former.scan.placeOf(id);
        return place && now - former.scan.receptions[*place].processedAt < throttle;
    });
}

void DiscoveredDevices::noteUnlisted(const Uuid& id, SteadyTime now) {
    if (now - m_stampsSince >= throttle) {
        m_olderStamps = std::exchange(m_stamps, {});
        m_stampsSince = now;
    }
    m_stamps.insert_or_assign(id, now);
}

std::size_t DiscoveredDevices::update(const BluetoothAdvertisement& advertisement, SteadyTime now,
                                      Date date) {
    const auto known = placeOf(advertisement.peripheral);
    const auto place = known.value_or(m_scan.devices.size());
    if (!known) {
        m_scan.devices.push_back({.id = advertisement.peripheral});
        m_scan.receptions.push_back({.id = advertisement.peripheral,
                                     .processedAt = now,
                                     .heardAt = now,
                                     .estimator = BluetoothProximityEstimator(maximumSamples)});
        m_scan.index.insert(advertisement.peripheral, place);
    }

    DiscoveredTracker& device = m_scan.devices[place];
    Reception& reception = m_scan.receptions[place];
    rename(device, reception, advertisement);
    if (!device.isMeshtastic)
        device.isMeshtastic = advertises(advertisement, meshtasticService());
    if (const auto snapshot = reception.estimator.add(advertisement.rssi)) {
        device.rssi = snapshot->rawRSSI;
        device.smoothedRSSI = snapshot->smoothedRSSI;
        device.trend = snapshot->trend;
        device.band = snapshot->band;
        device.sampleCount = snapshot->sampleCount;
    }
    device.lastSeen = date;
    reception.heardAt = now;
    return place;
}

void DiscoveredDevices::rename(DiscoveredTracker& device, Reception& reception,
                               const BluetoothAdvertisement& advertisement) {
    if (const auto* name = nameIn(advertisement)) {
        reception.hasMadeUpName = false;
        if (device.name != *name)
            device.name = *name;
    } else if (!std::exchange(reception.hasMadeUpName, true)) {
        const auto madeUp = BluetoothTexts::madeUpName(device.id);
        device.name.assign(madeUp.data(), madeUp.size());
    }
}

std::optional<std::size_t> DiscoveredDevices::restartReadings(const Uuid& id) {
    const auto place = placeOf(id);
    if (place) {
        m_scan.receptions[*place].estimator.reset();
        m_scan.devices[*place].sampleCount = 0;
        m_scan.devices[*place].trend = BluetoothProximityTrend::acquiring;
    }
    return place;
}

void DiscoveredDevices::clear() {
    if (m_scan.devices.empty())
        return;
    m_formerScans.push_back({std::exchange(m_scan, {}), m_scheduler.steadyNow()});
    if (!m_disposal)
        m_disposal = m_scheduler.every(disposalPeriod, [this] { disposeOfFormerScans(); });
}

void DiscoveredDevices::disposeOfFormerScans() {
    FormerScan& oldest = m_formerScans.front();
    if (m_scheduler.steadyNow() - oldest.clearedAt < throttle)
        return;
    oldest.scan.index = {};
    dropFront(oldest.scan.devices);
    dropFront(oldest.scan.receptions);
    tidyHeap();
    if (!oldest.scan.devices.empty())
        return;
    m_formerScans.pop_front();
    if (m_formerScans.empty())
        m_disposal.cancel();
}

} // namespace nightjar
