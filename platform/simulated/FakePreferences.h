// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Preferences.h"

#include <variant>

namespace nightjar {

/// Preferences that live in memory. A value keeps the type with which it was set, so a test can put one that
/// its reader does not expect. One thread.
class FakePreferences final : public Preferences {
public:
    [[nodiscard]] std::optional<bool> boolean(std::string_view key) const override;
    [[nodiscard]] std::optional<std::string> string(std::string_view key) const override;
    [[nodiscard]] std::optional<double> number(std::string_view key) const override;
    [[nodiscard]] std::optional<std::int64_t> integer(std::string_view key) const override;
    [[nodiscard]] std::optional<Dictionary> dictionary(std::string_view key) const override;
    [[nodiscard]] std::optional<Data> data(std::string_view key) const override;

    void setBoolean(std::string_view key, bool value) override;
    void setString(std::string_view key, std::string_view value) override;
    void setNumber(std::string_view key, double value) override;
    void setInteger(std::string_view key, std::int64_t value) override;
    void setDictionary(std::string_view key, const Dictionary& value) override;
    void setData(std::string_view key, const Data& value) override;
    void remove(std::string_view key) override;

    [[nodiscard]] bool contains(std::string_view key) const { return m_values.contains(key); }
    /// How often anything was set or removed.
    [[nodiscard]] int writes() const { return m_writes; }

private:
    using Value = std::variant<bool, std::string, double, std::int64_t, Dictionary, Data>;

    template <class T>
    [[nodiscard]] std::optional<T> get(std::string_view key) const;
    void set(std::string_view key, Value value);

    std::map<std::string, Value, std::less<>> m_values;
    int m_writes = 0;
};

} // namespace nightjar
