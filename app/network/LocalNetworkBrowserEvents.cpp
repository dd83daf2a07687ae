// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/network/LocalNetworkBrowser.h"

#include "app/alerts/AlertIdentifiers.h"
#include "app/network/NetworkTexts.h"

#include <algorithm>
#include <chrono>
#include <utility>

// What happens without the user: the network and time. Whoever is told of a change may start or end a scan at
// once, so each step looks whether its scan still is the current one.

namespace nightjar {

namespace {

using namespace std::chrono_literals;

/// A check this much after the one before: the thread was held up.
constexpr auto heldUp = 7s;
/// Time for what happened meanwhile to be told: a system service that was away needs up to a quarter of a
/// minute to find out who is still there.
constexpr auto catchUp = 20s;
/// The date moved on by so much more than the clock that stands still in sleep: the computer slept, or
/// somebody set the date, which this cannot tell apart.
constexpr Seconds slept{5};
/// After a sleep the network has to come back too, and then whoever seemed to be gone is asked after.
constexpr auto wakeUp = 60s;

} // namespace

void LocalNetworkBrowser::listen() {
    m_platform.services.setListener(
        {.onResults = [this](const std::string& type,
                             const std::vector<ServiceInstance>& instances) { receive(instances, type); },
         .onState = [this](const ServiceBrowserState& browser) { handle(browser); },
         .onOutOfSight = [this](const auto& instances) { loseSight(instances); }});
}

void LocalNetworkBrowser::receive(const std::vector<ServiceInstance>& instances,
                                  const std::string& serviceType) {
    if (!m_isBrowsing)
        return;
    const int generation = m_generation;
    Q_EMIT aboutToChange();
    if (generation != m_generation)
        return;

    const auto now = m_platform.scheduler.steadyNow();
    regainSight(now);
    recordResults(instances, serviceType);
    const auto returned = updateMonitoring(now);
    saveSoon();
    Q_EMIT devicesChanged();
    for (const LocalNetworkDevice& device : returned)
        postReturned(device);
    checkLossAlerts(now);
    show(NetworkTexts::available(m_devices.online()), generation);
}

void LocalNetworkBrowser::recordResults(const std::vector<ServiceInstance>& instances,
                                        const std::string& serviceType) {
    const Date now = m_platform.scheduler.now();
    std::vector<ServicePresence::Sighting> sightings;
    sightings.reserve(instances.size());
    for (const ServiceInstance& instance : instances) {
        const auto& sighting = sightings.emplace_back(
            ServicePresence::keyOf(instance), LocalNetworkDevice::identifier(instance.name, instance.domain));
        m_devices.hear(sighting.device, instance, now);
    }
    for (const std::string& device : m_presence.replace(serviceType, sightings))
        m_devices.setOffline(device);
    for (const std::string& device : m_devices.dropLongAway())
        m_departures.forget(device);
    m_devices.leaveKeptOrder();
}

/// The devices whose return is to be told.
std::vector<LocalNetworkDevice> LocalNetworkBrowser::updateMonitoring(SteadyTime now) {
    std::vector<LocalNetworkDevice> returned;
    for (const LocalNetworkDevice& device : m_devices.unsorted()) {
        const bool isWatched = DepartureMonitor::watches(device);
        if (device.isOnline && !isWatched)
            m_departures.noteUnwatchedOnline(device.id);
        else if (device.isOnline && m_departures.noteOnline(device.id))
            returned.push_back(device);
        else if (!device.isOnline && isWatched)
            m_departures.noteOffline(device.id, now);
    }
    return returned;
}

void LocalNetworkBrowser::checkLossAlerts(SteadyTime now) {
    if (!m_isBrowsing || mayHaveMissedResults(now))
        return;
    for (const std::string& id : m_departures.due(m_devices.unsorted(), now)) {
        const auto* found = m_devices.find(id);
        if (!found || !m_isBrowsing || !m_departures.isDue(*found, now))
            continue;
        const LocalNetworkDevice device = *found;
        m_departures.noteAlerted(id);
        postLeft(device);
        Q_EMIT aboutToChange();
        Q_EMIT devicesChanged();
    }
}

void LocalNetworkBrowser::regainSight(SteadyTime now) {
    if (std::exchange(m_isBlind, false))
        judgeNoSoonerThan(now + catchUp);
}

void LocalNetworkBrowser::judgeNoSoonerThan(SteadyTime time) {
    m_judgesFrom = std::max(m_judgesFrom, time);
}

Seconds LocalNetworkBrowser::dateAheadOf(SteadyTime now) const {
    return m_platform.scheduler.now().time_since_epoch() - now.time_since_epoch();
}

/// Whoever seems to be away may have come back without our knowing.
bool LocalNetworkBrowser::mayHaveMissedResults(SteadyTime now) {
    if (now - std::exchange(m_lastCheck, now) >= heldUp)
        judgeNoSoonerThan(now + catchUp);
    const auto ahead = dateAheadOf(now);
    if (ahead - std::exchange(m_dateAhead, ahead) >= slept)
        judgeNoSoonerThan(now + wakeUp);
    return m_isBlind || now < m_judgesFrom;
}

/// Offline, but not missed: it is armed again once it is seen.
void LocalNetworkBrowser::loseSight(const std::vector<ServiceInstance>& instances) {
    if (!m_isBrowsing)
        return;
    Q_EMIT aboutToChange();
    for (const ServiceInstance& instance : instances) {
        const auto id = LocalNetworkDevice::identifier(instance.name, instance.domain);
        if (const auto* device = m_devices.find(id); device && !device->isOnline)
            m_departures.disarm(id);
    }
    Q_EMIT devicesChanged();
}

void LocalNetworkBrowser::postLeft(const LocalNetworkDevice& device) {
    m_platform.notifications.post({.identifier = AlertIdentifiers::localNetworkLeft(device.id),
                                   .title = "Device left the network",
                                   .body = device.name + " has not been available on the Local Network for " +
                                           NetworkTexts::durationText(device.lossAlertDelay) + ".",
                                   .sound = NotificationSound::standard});
}

void LocalNetworkBrowser::postReturned(const LocalNetworkDevice& device) {
    m_platform.notifications.post({.identifier = AlertIdentifiers::localNetworkReturned(device.id),
                                   .title = "Device returned to the network",
                                   .body = device.name + " is available on the Local Network again.",
                                   .sound = NotificationSound::standard});
}

void LocalNetworkBrowser::handle(const ServiceBrowserState& browser) {
    using Kind = ServiceBrowserState::Kind;
    const int generation = m_generation;
    switch (browser.kind) {
    case Kind::failed:
        if (!m_isBrowsing)
            return;
        show(NetworkTexts::failed, generation);
        return setErrorMessage(browser.description);
    case Kind::waiting:
        m_isBlind = true;
        show(NetworkTexts::waiting, generation);
        if (browser.code == ServiceBrowserState::policyDenied)
            setErrorMessage(std::string(NetworkTexts::allowAccess));
        return;
    case Kind::ready:
        return regainSight(m_platform.scheduler.steadyNow());
    case Kind::settingUp:
    case Kind::cancelled:
        break;
    }
}

} // namespace nightjar
