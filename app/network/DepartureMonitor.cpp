// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/network/DepartureMonitor.h"

namespace nightjar {

void DepartureMonitor::arm(const std::string& id) {
    m_heardThisSession.insert(id);
    m_offlineSince.erase(id);
}

void DepartureMonitor::disarm(const std::string& id) {
    m_heardThisSession.erase(id);
    m_offlineSince.erase(id);
}

void DepartureMonitor::disarmAll() {
    m_heardThisSession.clear();
    m_offlineSince.clear();
}

bool DepartureMonitor::noteOnline(const std::string& id) {
    arm(id);
    return m_lossAlertedIDs.erase(id) > 0;
}

void DepartureMonitor::noteOffline(const std::string& id, SteadyTime now) {
    if (m_heardThisSession.contains(id))
        m_offlineSince.try_emplace(id, now);
}

void DepartureMonitor::endAlert(const std::string& id) {
    m_offlineSince.erase(id);
    m_lossAlertedIDs.erase(id);
}

void DepartureMonitor::restartGrace(const LocalNetworkDevice& device, SteadyTime now) {
    if (device.isOnline) {
        m_offlineSince.erase(device.id);
    } else {
        m_offlineSince[device.id] = now;
    }
    m_lossAlertedIDs.erase(device.id);
}

void DepartureMonitor::forget(const std::string& id) {
    endAlert(id);
    m_heardThisSession.erase(id);
}

bool DepartureMonitor::isDue(const LocalNetworkDevice& device, SteadyTime now) const {
    if (!watches(device) || device.isOnline || !m_heardThisSession.contains(device.id) ||
        m_lossAlertedIDs.contains(device.id))
        return false;
    const auto since = m_offlineSince.find(device.id);
    return since != m_offlineSince.end() && Seconds{now - since->second} >= Seconds{device.lossAlertDelay};
}

std::vector<std::string> DepartureMonitor::due(const std::vector<LocalNetworkDevice>& devices,
                                               SteadyTime now) const {
    std::vector<std::string> ids;
    if (m_offlineSince.empty())
        return ids;
    for (const LocalNetworkDevice& device : devices) {
        if (isDue(device, now))
            ids.push_back(device.id);
    }
    return ids;
}

std::string_view DepartureMonitor::status(const LocalNetworkDevice& device) const {
    if (device.isOnline)
        return "Online · alarm armed";
    if (m_lossAlertedIDs.contains(device.id))
        return "Offline · alert sent";
    return m_offlineSince.contains(device.id) ? "Offline · waiting for grace period"
                                              : "Waiting to see this device online";
}

} // namespace nightjar
