// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/network/KnownDevices.h"

#include <algorithm>
#include <utility>

namespace nightjar {

KnownDevices::KnownDevices(const TextServices& text, std::vector<LocalNetworkDevice> kept)
    : m_text(text), m_devices(std::move(kept)) {
    for (LocalNetworkDevice& device : m_devices) {
        device.isOnline = false;
        m_entries[device.id].collationKey = m_text.collationKey(device.name);
    }
    renumber();
}

const std::vector<LocalNetworkDevice>& KnownDevices::list() const {
    if (std::exchange(m_sortIsDue, false))
        sort();
    return m_devices;
}

const LocalNetworkDevice* KnownDevices::find(const std::string& id) const {
    const auto entry = m_entries.find(id);
    return entry == m_entries.end() ? nullptr : &m_devices[entry->second.place];
}

LocalNetworkDevice* KnownDevices::find(const std::string& id) {
    return const_cast<LocalNetworkDevice*>(std::as_const(*this).find(id));
}

void KnownDevices::hear(const std::string& id, const ServiceInstance& instance, Date at) {
    auto* found = find(id);
    LocalNetworkDevice& device = found ? *found : add(id, instance);
    if (!device.isOnline) {
        ++m_online;
        m_sortIsDue = true;
    }
    device.record(instance.type, instance.interfaceName.value_or(""), at);
}

void KnownDevices::leaveKeptOrder() {
    if (std::exchange(m_isInKeptOrder, false))
        m_sortIsDue = true;
}

LocalNetworkDevice& KnownDevices::add(const std::string& id, const ServiceInstance& instance) {
    m_entries[id] = {.place = m_devices.size(), .collationKey = m_text.collationKey(instance.name)};
    return m_devices.emplace_back(
        LocalNetworkDevice{.id = id, .name = instance.name, .domain = instance.domain});
}

void KnownDevices::setOffline(const std::string& id) {
    auto* device = find(id);
    if (!device || !device->isOnline)
        return;
    device->isOnline = false;
    --m_online;
    m_sortIsDue = true;
}

void KnownDevices::setAllOffline() {
    static_cast<void>(list());
    for (LocalNetworkDevice& device : m_devices)
        device.isOnline = false;
    m_online = 0;
    m_isInKeptOrder = true;
}

void KnownDevices::remove(const std::string& id) {
    const auto entry = m_entries.find(id);
    if (entry == m_entries.end())
        return;
    const auto place = m_devices.begin() + static_cast<std::ptrdiff_t>(entry->second.place);
    m_online -= place->isOnline ? 1 : 0;
    m_devices.erase(place);
    m_entries.erase(entry);
    renumber();
}

std::vector<std::string> KnownDevices::dropLongAway() {
    if (m_devices.size() - m_online <= mostAway)
        return {};
    std::vector<std::pair<Date, std::size_t>> away;
    for (std::size_t place = 0; place < m_devices.size(); ++place) {
        if (!m_devices[place].isOnline && !m_devices[place].isTracked)
            away.emplace_back(m_devices[place].lastSeen, place);
    }
    if (away.size() <= mostAway)
        return {};
    const auto kept = away.end() - static_cast<std::ptrdiff_t>(mostAway);
    std::ranges::nth_element(away, kept);
    std::vector<std::string> dropped;
    for (auto oldest = away.begin(); oldest != kept; ++oldest) {
        dropped.push_back(m_devices[oldest->second].id);
        m_entries.erase(dropped.back());
    }
    std::erase_if(m_devices, [this](const auto& device) { return !m_entries.contains(device.id); });
    renumber();
    return dropped;
}

void KnownDevices::sort() const {
    struct Ranked {
        bool isOffline;
        const std::string* collationKey;
        std::size_t place;
    };
    std::vector<Ranked> order;
    order.reserve(m_devices.size());
    for (const LocalNetworkDevice& device : m_devices)
        order.push_back({!device.isOnline, &m_entries[device.id].collationKey, order.size()});
    std::ranges::stable_sort(order, [](const Ranked& a, const Ranked& b) {
        return a.isOffline != b.isOffline ? b.isOffline : *a.collationKey < *b.collationKey;
    });
    std::vector<LocalNetworkDevice> sorted;
    sorted.reserve(m_devices.size());
    for (const Ranked& ranked : order)
        sorted.push_back(std::move(m_devices[ranked.place]));
    m_devices = std::move(sorted);
    renumber();
}

void KnownDevices::renumber() const {
    for (std::size_t place = 0; place < m_devices.size(); ++place)
        m_entries[m_devices[place].id].place = place;
}

} // namespace nightjar
