// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/BluezAdapters.h"

#include "platform/linux/BluezReading.h"

#include <algorithm>
#include <utility>

namespace nightjar {

void BluezAdapters::add(const QString& path) {
    if (m_adapters.contains(path) || m_adapters.size() < mostAdapters)
        m_adapters[path] = {};
}

void BluezAdapters::set(const QString& path, const QString& property, const QVariant& value) {
    const auto found = m_adapters.find(path);
    if (found == m_adapters.end())
        return;
    if (property == QLatin1String("Powered")) {
        if (const auto powered = bluez::valueOf<bool>(value))
            found->second.isPowered = *powered;
    } else if (property == QLatin1String("Roles")) {
        if (const auto roles = bluez::valueOf<QStringList>(value))
            found->second.isCentral = std::ranges::any_of(
                *roles, [](const QString& role) { return role.startsWith(QLatin1String("central")); });
    }
}

void BluezAdapters::remove(const QString& path) {
    m_adapters.erase(path);
}

void BluezAdapters::clear() {
    m_adapters.clear();
}

bool BluezAdapters::choose() {
    const auto isUsable = [](const auto& item) { return item.second.isPowered && item.second.isCentral; };
    const auto current = m_adapters.find(m_chosen);
    if (current != m_adapters.end() && isUsable(*current))
        return false;
    const auto best = std::ranges::find_if(m_adapters, isUsable);
    const QString before = std::exchange(m_chosen, best == m_adapters.end() ? QString() : best->first);
    m_prefix = m_chosen + u'/';
    return m_chosen != before;
}

bool BluezAdapters::hasCentral() const {
    return std::ranges::any_of(m_adapters, [](const auto& item) { return item.second.isCentral; });
}

} // namespace nightjar
