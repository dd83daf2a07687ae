// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/network/LocalNetworkDevice.h"
#include "platform/ServiceBrowser.h"
#include "platform/TextServices.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace nightjar {

/// Every device known now or from earlier runs. Main thread. Asking for one does not search the list. The
/// services of one machine come as one change for each type: the list is sorted when it is looked at, once
/// for all of them.
class KnownDevices {
public:
    static constexpr std::size_t mostAway = 1000;

    /// `kept` has one record for each id; nobody is online yet.
    KnownDevices(const TextServices& text, std::vector<LocalNetworkDevice> kept);

    /// Once somebody listened: online devices before the others, each group by name as a file browser sorts
    /// them. The pointers that `find` gave are void after a sorting.
    [[nodiscard]] const std::vector<LocalNetworkDevice>& list() const;
    /// In no particular order.
    [[nodiscard]] const std::vector<LocalNetworkDevice>& unsorted() const { return m_devices; }
    [[nodiscard]] const LocalNetworkDevice* find(const std::string& id) const;
    [[nodiscard]] LocalNetworkDevice* find(const std::string& id);
    [[nodiscard]] std::size_t online() const { return m_online; }

    /// Records a service for the device of that id, which is made when it is not known.
    void hear(const std::string& id, const ServiceInstance& instance, Date at);
    void setOffline(const std::string& id);
    /// Somebody listens now.
    void leaveKeptOrder();
    /// Leaves the order.
    void setAllOffline();
    void remove(const std::string& id);
    /// Drops untracked devices beyond `mostAway` that are offline, those first that were seen longest ago;
    /// their ids. A network to which strangers come for years must not fill the memory and the file.
    [[nodiscard]] std::vector<std::string> dropLongAway();

private:
    struct Entry {
        std::size_t place = 0;
        std::string collationKey; ///< of the name, which never changes
    };

    LocalNetworkDevice& add(const std::string& id, const ServiceInstance& instance);
    void sort() const;
    void renumber() const;

    const TextServices& m_text;
    mutable std::vector<LocalNetworkDevice> m_devices;
    mutable std::unordered_map<std::string, Entry> m_entries; ///< by id
    mutable bool m_sortIsDue = false;
    bool m_isInKeptOrder = true; ///< or in the order of an ended scan
    std::size_t m_online = 0;
};

} // namespace nightjar
