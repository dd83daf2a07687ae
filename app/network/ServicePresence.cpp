// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/network/ServicePresence.h"

#include <utility>

namespace nightjar {

std::string ServicePresence::keyOf(const ServiceInstance& instance) {
    const std::string nowhere;
    const auto& interface = instance.interfaceName ? *instance.interfaceName : nowhere;
    std::string key;
    key.reserve(instance.name.size() + instance.type.size() + instance.domain.size() + interface.size() + 3);
    key.append(instance.name).append(1, '|');
    key.append(instance.type).append(1, '|');
    key.append(instance.domain).append(1, '|');
    return key.append(interface);
}

void ServicePresence::clear() {
    m_live.clear();
    m_owners.clear();
    m_services.clear();
}

std::vector<std::string> ServicePresence::replace(const std::string& type,
                                                  const std::vector<Sighting>& sightings) {
    std::vector<std::string> owners;
    Keys& live = m_live[type];
    const Keys former = std::exchange(live, {});
    live.reserve(sightings.size());
    for (const Sighting& sighting : sightings) {
        const bool isNew = live.insert(sighting.key).second && !former.contains(sighting.key);
        enter(sighting, isNew, owners);
    }
    for (const std::string& key : former) {
        if (!live.contains(key))
            leave(key, owners);
    }
    std::erase_if(owners, [this](const std::string& device) { return isPresent(device); });
    return owners;
}

/// Names with bars in them can make one key for two devices: the one heard last has the service.
void ServicePresence::enter(const Sighting& sighting, bool isNewInSet, std::vector<std::string>& owners) {
    Service& service = m_owners[sighting.key];
    if (service.sets > 0 && service.owner != sighting.device) {
        removeFrom(service.owner, service.sets);
        owners.push_back(service.owner);
        m_services[sighting.device] += service.sets;
    }
    service.owner = sighting.device;
    if (!isNewInSet)
        return;
    ++service.sets;
    ++m_services[service.owner];
}

void ServicePresence::leave(const std::string& key, std::vector<std::string>& owners) {
    const auto service = m_owners.find(key);
    removeFrom(service->second.owner, 1);
    owners.push_back(service->second.owner);
    if (--service->second.sets == 0)
        m_owners.erase(service);
}

void ServicePresence::removeFrom(const std::string& device, std::size_t count) {
    const auto services = m_services.find(device);
    if (services == m_services.end())
        return;
    services->second -= count;
    if (services->second == 0)
        m_services.erase(services);
}

} // namespace nightjar
