// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/LinkSight.h"

#include <algorithm>
#include <utility>

namespace nightjar {

LinkSight::LinkSight(NetworkLinks& links, Scheduler& scheduler, const AvahiSettings& settings,
                     Handlers handlers)
    : m_links(links), m_scheduler(scheduler), m_settings(settings), m_handlers(std::move(handlers)) {}

void LinkSight::begin() {
    m_links.watch([this](int index, const NetworkLinks::Link& link) { changed(index, link); });
}

bool LinkSight::canHear() const {
    return !m_links.isComplete() ||
           std::ranges::any_of(m_interfaces, [](const auto& item) { return item.second.isUsable; });
}

bool LinkSight::keeps(const std::string& name) const {
    const auto found = m_interfaces.find(name);
    return found != m_interfaces.end() &&
           (found->second.phase == Phase::down || found->second.phase == Phase::returning);
}

bool LinkSight::judges(const std::string& name) const {
    const auto found = m_interfaces.find(name);
    return found == m_interfaces.end() || (found->second.isUsable && !isElsewhere(found->second));
}

bool LinkSight::isElsewhere(const Interface& interface) {
    return !std::ranges::includes(interface.networks, interface.formerNetworks);
}

void LinkSight::changed(int index, const NetworkLinks::Link& link) {
    const auto [found, isNew] = m_interfaces.try_emplace(link.name);
    Interface& interface = found->second;
    const bool wasUsable = std::exchange(interface.isUsable, link.isUsable);
    const bool differs = interface.networks != link.networks;
    interface.networks = link.networks;
    if (isNew && !link.isUsable)
        interface.phase = Phase::outOfSight;
    else if (!isNew && wasUsable && !link.isUsable)
        goDown(link.name, interface);
    else if (!isNew && link.isUsable &&
             (!wasUsable || (differs && (interface.phase == Phase::returning || isElsewhere(interface)))))
        comeBack(link.name, interface);
    if (interface.phase == Phase::usable && link.isUsable)
        interface.formerNetworks = link.networks;
    if (wasUsable != link.isUsable)
        m_handlers.usableChanged(index, link.isUsable);
}

void LinkSight::goDown(const std::string& name, Interface& interface) {
    interface.phase = Phase::down;
    interface.timer = m_scheduler.after(m_settings.linkPatience, [this, name] { giveUp(name); });
}

void LinkSight::comeBack(const std::string& name, Interface& interface) {
    interface.phase = Phase::returning;
    interface.timer = m_scheduler.after(m_settings.holding, [this, name] { settle(name); });
}

/// Without any interface nothing is given up: the watch says that it hears nobody.
void LinkSight::giveUp(const std::string& name) {
    Interface& interface = m_interfaces[name];
    if (!canHear())
        return goDown(name, interface);
    interface.phase = Phase::outOfSight;
    interface.timer.cancel();
    m_handlers.released();
}

void LinkSight::settle(const std::string& name) {
    Interface& interface = m_interfaces[name];
    interface.phase = Phase::usable;
    interface.timer.cancel();
    m_handlers.released();
    interface.formerNetworks = interface.networks;
}

} // namespace nightjar
