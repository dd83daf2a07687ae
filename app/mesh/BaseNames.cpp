// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/mesh/BaseNames.h"

#include "core/base/Text.h"

namespace nightjar {

namespace {
constexpr std::string_view baseNamesKey = "meshtasticBaseNames";
}

BaseNames::BaseNames(Preferences& preferences, Announcer announcer)
    : m_preferences(preferences),
      m_names(announcer, preferences.dictionary(baseNamesKey).value_or(Preferences::Dictionary{})) {}

void BaseNames::remember(const std::string& port, const std::string& longName) {
    const auto name = trimmed(longName);
    if (name.empty())
        return;
    // A base reports itself every few minutes; only news is worth a write.
    const auto known = all().find(port);
    if (known != all().end() && known->second == name)
        return;
    m_names.change([&](auto& names) { names[port] = name; });
    m_preferences.setDictionary(baseNamesKey, all());
}

} // namespace nightjar
