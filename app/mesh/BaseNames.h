// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/Published.h"
#include "platform/Preferences.h"

#include <map>
#include <string>

namespace nightjar {

/// The names of the base radios by port, kept across restarts so that a port can be shown by the name of its
/// radio before it is connected. Main thread.
class BaseNames {
public:
    BaseNames(Preferences& preferences, Announcer announcer);

    [[nodiscard]] const std::map<std::string, std::string>& all() const { return m_names.get(); }
    /// A name of white space alone is no name.
    void remember(const std::string& port, const std::string& longName);

private:
    Preferences& m_preferences;
    Published<std::map<std::string, std::string>> m_names;
};

} // namespace nightjar
