// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/ServiceSets.h"

#include <utility>

namespace nightjar {

ServiceSets::ServiceSets(Scheduler& scheduler, const AvahiSettings& settings, Handlers handlers)
    : m_scheduler(scheduler), m_settings(settings), m_handlers(std::move(handlers)) {}

ServiceInstance ServiceSets::instance(const std::string& type, const std::string& name) {
    return {.name = name, .type = type, .domain = "local."};
}

bool ServiceSets::add(const std::string& type, const std::string& name, Place place) {
    Set& set = m_sets[type];
    if (set.places.size() >= mostOfType && !set.places.contains(name))
        return false;
    if (set.places[name].insert(place).second)
        markDirty(set, m_settings.coalescing);
    return true;
}

bool ServiceSets::remove(const std::string& type, const std::string& name, Place place) {
    Set& set = m_sets[type];
    const auto found = set.places.find(name);
    if (found == set.places.end() || found->second.erase(place) == 0)
        return false;
    markDirty(set, m_settings.coalescing);
    if (!found->second.empty())
        return false;
    set.places.erase(found);
    std::erase_if(set.held, [&](const ServiceInstance& held) { return held.name == name; });
    return true;
}

void ServiceSets::complete(const std::string& type) {
    Set& set = m_sets[type];
    if (std::exchange(set.isComplete, true))
        return;
    if (!set.held.empty())
        set.holding = m_scheduler.after(m_settings.holding, [this, type] {
            Set& expired = m_sets[type];
            expired.held.clear();
            markDirty(expired, {});
        });
    markDirty(set, m_handlers.isUnsettled() ? m_settings.coalescing : std::chrono::milliseconds::zero());
}

void ServiceSets::touch(const std::string& type) {
    markDirty(m_sets[type], m_settings.coalescing);
}

void ServiceSets::touchAllNow() {
    for (auto& [type, set] : m_sets)
        markDirty(set, {});
}

void ServiceSets::restart(const std::string& type) {
    Set& set = m_sets[type];
    if (set.told)
        set.held.insert(set.told->begin(), set.told->end());
    set.places.clear();
    set.holding.cancel();
    set.isComplete = false;
    set.isDirty = false;
}

void ServiceSets::restartAll() {
    for (const auto& [type, set] : m_sets)
        restart(type);
}

void ServiceSets::clear() {
    m_sets.clear();
    m_flush.cancel();
}

bool ServiceSets::isHeld(const std::string& type, const std::string& name) const {
    const auto set = m_sets.find(type);
    if (set == m_sets.end())
        return false;
    const auto held = set->second.held.lower_bound({.name = name, .type = {}, .domain = {}});
    return held != set->second.held.end() && held->name == name;
}

void ServiceSets::markDirty(Set& set, std::chrono::milliseconds delay) {
    set.isDirty = true;
    const auto time = m_scheduler.steadyNow() + delay;
    if (m_flush && m_flushTime <= time)
        return;
    m_flushTime = time;
    m_flush = m_scheduler.after(delay, [this] { flush(); });
}

void ServiceSets::flush() {
    m_flush.cancel();
    std::vector<std::string> types;
    for (const auto& [type, set] : m_sets)
        if (set.isDirty)
            types.push_back(type);
    // Who is told may change what is browsed.
    for (const auto& type : types)
        if (const auto set = m_sets.find(type); set != m_sets.end())
            tell(type, set->second);
}

void ServiceSets::tell(const std::string& type, Set& set) {
    auto instances = snapshot(type, set);
    if (!instances || (!set.isComplete && instances->empty()))
        return;
    set.isDirty = false;
    if (set.told == instances)
        return;
    set.told = instances;
    m_handlers.tell(type, *instances);
}

/// Absent while the name of an interface is still being asked for; it is dirty until then.
std::optional<std::vector<ServiceInstance>> ServiceSets::snapshot(const std::string& type,
                                                                  const Set& set) const {
    std::set<ServiceInstance> instances;
    for (const auto& [name, places] : set.places) {
        auto heard = instance(type, name);
        if (!m_handlers.isThere(heard).value_or(true))
            continue;
        for (const Place& place : places) {
            const auto interfaceName = m_handlers.interfaceName(place.interfaceIndex);
            if (!interfaceName)
                return std::nullopt;
            heard.interfaceName = *interfaceName;
            instances.insert(heard);
        }
    }
    for (const auto& held : set.held)
        if (m_handlers.isThere(held).value_or(true))
            instances.insert(held);
    return std::vector(instances.begin(), instances.end());
}

} // namespace nightjar
