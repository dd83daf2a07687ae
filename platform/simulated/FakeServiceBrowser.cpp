// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/simulated/FakeServiceBrowser.h"

namespace nightjar {

void FakeServiceBrowser::browse(const std::string& type) {
    m_browsed.insert(type);
    if (m_onBrowse)
        m_onBrowse();
}

void FakeServiceBrowser::announce(const ServiceInstance& instance) {
    if (m_instances[instance.type].insert(instance).second)
        tellResults(instance.type);
}

void FakeServiceBrowser::vanish(const ServiceInstance& instance) {
    if (m_instances[instance.type].erase(instance) > 0)
        tellResults(instance.type);
}

void FakeServiceBrowser::loseSight(const ServiceInstance& instance) {
    vanish(instance);
    if (m_listener.onOutOfSight)
        m_listener.onOutOfSight({instance});
}

void FakeServiceBrowser::setInstances(const std::string& type, std::set<ServiceInstance> instances) {
    m_instances[type] = std::move(instances);
    tellResults(type);
}

void FakeServiceBrowser::tell(const ServiceBrowserState& state) {
    if (m_listener.onState)
        m_listener.onState(state);
}

void FakeServiceBrowser::tellAll() {
    const auto types = m_browsed;
    for (const auto& type : types)
        tellResults(type);
}

void FakeServiceBrowser::tellResults(const std::string& type) {
    if (!m_browsed.contains(type) || !m_listener.onResults)
        return;
    const auto& instances = m_instances[type];
    m_listener.onResults(type, {instances.begin(), instances.end()});
}

} // namespace nightjar
