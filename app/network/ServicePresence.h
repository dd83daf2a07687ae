// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/ServiceBrowser.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace nightjar {

/// Which services are announced now, and thereby which devices are there. Main thread. It knows only what is
/// announced, so that names that come and go for ever fill no memory.
class ServicePresence {
public:
    /// A service on one interface and the device that it belongs to.
    struct Sighting {
        std::string key; ///< of `keyOf`
        std::string device;
    };

    [[nodiscard]] static std::string keyOf(const ServiceInstance& instance);

    void clear();
    /// Takes the complete current set of a type in place of its former one. Gives the devices that had a
    /// service in the former set and have none in any set now.
    [[nodiscard]] std::vector<std::string> replace(const std::string& type,
                                                   const std::vector<Sighting>& sightings);
    /// Whether one of its services is announced.
    [[nodiscard]] bool isPresent(const std::string& device) const { return m_services.contains(device); }

private:
    struct Service {
        std::string owner;
        std::size_t sets = 0; ///< of types in which it is
    };
    using Keys = std::unordered_set<std::string>;

    void enter(const Sighting& sighting, bool isNewInSet, std::vector<std::string>& owners);
    void leave(const std::string& key, std::vector<std::string>& owners);
    void removeFrom(const std::string& device, std::size_t count);

    std::unordered_map<std::string, Keys> m_live; ///< by type
    std::unordered_map<std::string, Service> m_owners;
    std::unordered_map<std::string, std::size_t> m_services; ///< the number of those of a device
};

} // namespace nightjar
