// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nightjar {

/// The user's settings by key, kept across restarts. Main thread. A value of another type than asked for
/// reads as missing and is left in place.
class Preferences {
public:
    using Dictionary = std::map<std::string, std::string>;
    using Data = std::vector<std::uint8_t>;

    virtual ~Preferences() = default;
    [[nodiscard]] virtual std::optional<bool> boolean(std::string_view key) const = 0;
    [[nodiscard]] virtual std::optional<std::string> string(std::string_view key) const = 0;
    /// Any number, integers included.
    [[nodiscard]] virtual std::optional<double> number(std::string_view key) const = 0;
    [[nodiscard]] virtual std::optional<std::int64_t> integer(std::string_view key) const = 0;
    [[nodiscard]] virtual std::optional<Dictionary> dictionary(std::string_view key) const = 0;
    [[nodiscard]] virtual std::optional<Data> data(std::string_view key) const = 0;

    virtual void setBoolean(std::string_view key, bool value) = 0;
    virtual void setString(std::string_view key, std::string_view value) = 0;
    virtual void setNumber(std::string_view key, double value) = 0;
    virtual void setInteger(std::string_view key, std::int64_t value) = 0;
    virtual void setDictionary(std::string_view key, const Dictionary& value) = 0;
    virtual void setData(std::string_view key, const Data& value) = 0;
    virtual void remove(std::string_view key) = 0;
};

} // namespace nightjar
