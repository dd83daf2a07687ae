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

/// A scan of millions is gone in half a minute, in steps of less than a millisecond.
constexpr auto disposalPeriod = 20ms;
constexpr std::size_t disposalStep = 4096;

template <class List>
void dropFront(List& list) {
    for (std::size_t i = 0; i < disposalStep && !list.empty(); ++i)
        list.pop_front();
}

bool advertises(const BluetoothAdvertisement& advertisement, const Uuid& service) {
    const auto& services = advertisement.serviceUUIDs;
    return std::ranges::find(services, service) != services.end();
}

void rename(DiscoveredTracker& device, const BluetoothAdvertisement& advertisement) {
    const auto set = [&device](std::string_view name) {
        if (device.name != name)
            device.name = name;
    };
    if (advertisement.peripheralName) {
        set(*advertisement.peripheralName);
    } else if (advertisement.localName) {
        set(*advertisement.localName);
    } else {
        const auto name = BluetoothTexts::madeUpName(advertisement.peripheral);
        set({name.data(), name.size()});
    }
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
        m_scan.receptions.push_back({now, now, BluetoothProximityEstimator(maximumSamples)});
        m_scan.index.insert(advertisement.peripheral, place);
    }

    DiscoveredTracker& device = m_scan.devices[place];
    rename(device, advertisement);
    if (!device.isMeshtastic)
        device.isMeshtastic = advertises(advertisement, meshtasticService());
    if (const auto snapshot = m_scan.receptions[place].estimator.add(advertisement.rssi)) {
        device.rssi = snapshot->rawRSSI;
        device.smoothedRSSI = snapshot->smoothedRSSI;
        device.trend = snapshot->trend;
        device.band = snapshot->band;
        device.sampleCount = snapshot->sampleCount;
    }
    device.lastSeen = date;
    m_scan.receptions[place].heardAt = now;
    return place;
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
    dropFront(oldest.scan.devices);
    dropFront(oldest.scan.receptions);
    if (!oldest.scan.devices.empty())
        return;
    m_formerScans.pop_front();
    if (m_formerScans.empty())
        m_disposal.cancel();
}

} // namespace nightjar
