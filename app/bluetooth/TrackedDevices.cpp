// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/bluetooth/TrackedDevices.h"

#include <algorithm>
#include <utility>

namespace nightjar {

TrackedDevices::TrackedDevices(const TextServices& text, Announcer announcer,
                               std::vector<TrackedBluetoothDevice> kept)
    : m_text(text), m_devices(announcer, std::move(kept)) {
    renumber(list());
}

const TrackedBluetoothDevice* TrackedDevices::find(const Uuid& id) const {
    const auto found = m_entries.find(id);
    return found == m_entries.end() ? nullptr : &list()[found->second.place];
}

SteadyTime TrackedDevices::heardAt(const Uuid& id) const {
    const auto found = m_entries.find(id);
    return found == m_entries.end() ? SteadyTime{} : found->second.heardAt;
}

void TrackedDevices::setHeardAt(const Uuid& id, SteadyTime time) {
    if (const auto found = m_entries.find(id); found != m_entries.end())
        found->second.heardAt = time;
}

void TrackedDevices::add(TrackedBluetoothDevice device, SteadyTime heardAt) {
    m_devices.change([&](std::vector<TrackedBluetoothDevice>& devices) {
        if (contains(device.id))
            return;
        m_entries[device.id].heardAt = heardAt;
        devices.push_back(std::move(device));
        sortByName(devices);
        renumber(devices);
    });
}

void TrackedDevices::remove(Uuid id) {
    if (!contains(id))
        return;
    m_devices.change([&](std::vector<TrackedBluetoothDevice>& devices) {
        std::erase_if(devices, [&id](const auto& device) { return device.id == id; });
        m_entries.erase(id);
        renumber(devices);
    });
}

void TrackedDevices::sortByName(std::vector<TrackedBluetoothDevice>& devices) const {
    std::vector<std::pair<std::string, TrackedBluetoothDevice>> keyed;
    for (auto& device : devices)
        keyed.emplace_back(m_text.collationKey(device.name), std::move(device));
    std::ranges::stable_sort(keyed, {}, &std::pair<std::string, TrackedBluetoothDevice>::first);
    std::ranges::transform(keyed, devices.begin(), [](auto& pair) { return std::move(pair.second); });
}

void TrackedDevices::renumber(const std::vector<TrackedBluetoothDevice>& devices) {
    for (std::size_t place = 0; place < devices.size(); ++place)
        m_entries[devices[place].id].place = place;
}

} // namespace nightjar
