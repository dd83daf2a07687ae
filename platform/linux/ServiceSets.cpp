// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/ServiceSets.h"

#include <algorithm>
#include <iterator>
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
    const bool isElsewhereThere = std::ranges::any_of(
        found->second, [&](const Place& other) { return other.interfaceIndex == place.interfaceIndex; });
    if (found->second.empty()) {
        set.places.erase(found);
        std::erase_if(set.held, [&](const ServiceInstance& held) { return held.name == name; });
    }
    return !isElsewhereThere;
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

void ServiceSets::tellNow() {
    for (auto& [type, set] : m_sets)
        set.isDirty = true;
    flush();
}

void ServiceSets::resume() {
    for (auto& [type, set] : m_sets)
        if (set.isDirty)
            markDirty(set, {});
}

void ServiceSets::tellAgain() {
    for (auto& [type, set] : m_sets)
        set.isToldAgain = true;
    touchAllNow();
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
    if (!m_handlers.mayTell())
        return;
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
    if (!std::exchange(set.isToldAgain, false) && set.told == instances)
        return;
    const auto before = std::exchange(set.told, instances).value_or(Instances{});
    m_handlers.tell(type, *instances);
    if (const auto lost = outOfSight(before, *instances); !lost.empty())
        m_handlers.outOfSight(lost);
}

bool ServiceSets::keeps(const ServiceInstance& told) const {
    return told.interfaceName && m_handlers.keeps(*told.interfaceName);
}

/// Those that are missing because of us.
ServiceSets::Instances ServiceSets::outOfSight(const Instances& before, const Instances& after) const {
    Instances lost;
    std::ranges::set_difference(before, after, std::back_inserter(lost));
    std::erase_if(lost, [this](const ServiceInstance& instance) {
        return !instance.interfaceName || m_handlers.judges(*instance.interfaceName);
    });
    return lost;
}

/// Absent while the name of an interface is still being asked for; it is dirty until then.
std::optional<ServiceSets::Instances> ServiceSets::snapshot(const std::string& type, const Set& set) const {
    std::set<ServiceInstance> instances;
    std::set<ServiceInstance> dead;
    for (const auto& [name, places] : set.places) {
        auto heard = instance(type, name);
        for (const Place& place : places) {
            const auto interfaceName = m_handlers.interfaceName(place.interfaceIndex);
            if (!interfaceName)
                return std::nullopt;
            heard.interfaceName = *interfaceName;
            (m_handlers.isThere(type, name, place.interfaceIndex) ? instances : dead).insert(heard);
        }
    }
    for (const auto& held : set.held)
        if (!dead.contains(held))
            instances.insert(held);
    for (const auto& told : set.told.value_or(Instances{}))
        if (keeps(told))
            instances.insert(told);
    return Instances(instances.begin(), instances.end());
}

} // namespace nightjar
