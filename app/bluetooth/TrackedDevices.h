// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/Published.h"
#include "core/bluetooth/TrackedBluetoothDevice.h"
#include "platform/Scheduler.h"
#include "platform/TextServices.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace nightjar {

/// The devices that the user tracks, at most one record each. Main thread. Most advertisements are of other
/// devices: asking for one does not search the list.
class TrackedDevices {
public:
    TrackedDevices(const TextServices& text, Announcer announcer, std::vector<TrackedBluetoothDevice> kept);

    [[nodiscard]] const std::vector<TrackedBluetoothDevice>& list() const { return m_devices.get(); }
    [[nodiscard]] const TrackedBluetoothDevice* find(const Uuid& id) const;
    [[nodiscard]] bool contains(const Uuid& id) const { return m_entries.contains(id); }
    /// `lastSeen` in time that no clock setting moves; for a tracked device.
    [[nodiscard]] SteadyTime heardAt(const Uuid& id) const;

    /// Adds a device that is not tracked yet and sorts all by their names, as a file browser does.
    void add(TrackedBluetoothDevice device, SteadyTime heardAt);
    void remove(Uuid id);
    void setHeardAt(const Uuid& id, SteadyTime time);
    /// False when the device is not tracked.
    template <class Change>
    bool change(Uuid id, Change&& applyTo) {
        if (!contains(id))
            return false;
        m_devices.change([&](std::vector<TrackedBluetoothDevice>& devices) {
            // Whoever was told that something changes may have removed the device.
            if (const auto entry = m_entries.find(id); entry != m_entries.end())
                std::forward<Change>(applyTo)(devices[entry->second.place]);
        });
        return true;
    }

private:
    struct Entry {
        std::size_t place = 0;
        SteadyTime heardAt{};
    };

    void sortByName(std::vector<TrackedBluetoothDevice>& devices) const;
    void renumber(const std::vector<TrackedBluetoothDevice>& devices);

    const TextServices& m_text;
    Published<std::vector<TrackedBluetoothDevice>> m_devices;
    std::unordered_map<Uuid, Entry> m_entries;
};

} // namespace nightjar
