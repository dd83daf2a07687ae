// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace nightjar {

/// Sets variables for one test; no value = unset.
class Environment {
public:
    explicit Environment(const std::map<std::string, std::optional<std::string>>& variables) {
        for (const auto& [name, value] : variables) {
            const char* old = std::getenv(name.c_str());
            m_old[name] = old ? std::optional<std::string>(old) : std::nullopt;
            set(name, value);
        }
    }
    ~Environment() {
        for (const auto& [name, value] : m_old)
            set(name, value);
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    static void set(const std::string& name, const std::optional<std::string>& value) {
        if (value)
            ::setenv(name.c_str(), value->c_str(), 1);
        else
            ::unsetenv(name.c_str());
    }
    std::map<std::string, std::optional<std::string>> m_old;
};

} // namespace nightjar
