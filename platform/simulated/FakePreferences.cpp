// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/simulated/FakePreferences.h"

#include <utility>

namespace nightjar {

template <class T>
std::optional<T> FakePreferences::get(std::string_view key) const {
    const auto found = m_values.find(key);
    if (found == m_values.end())
        return std::nullopt;
    const auto* value = std::get_if<T>(&found->second);
    return value ? std::optional(*value) : std::nullopt;
}

void FakePreferences::set(std::string_view key, Value value) {
    ++m_writes;
    m_values.insert_or_assign(std::string(key), std::move(value));
}

std::optional<bool> FakePreferences::boolean(std::string_view key) const {
    return get<bool>(key);
}

std::optional<std::string> FakePreferences::string(std::string_view key) const {
    return get<std::string>(key);
}

std::optional<double> FakePreferences::number(std::string_view key) const {
    if (const auto whole = get<std::int64_t>(key))
        return static_cast<double>(*whole);
    return get<double>(key);
}

std::optional<std::int64_t> FakePreferences::integer(std::string_view key) const {
    return get<std::int64_t>(key);
}

std::optional<Preferences::Dictionary> FakePreferences::dictionary(std::string_view key) const {
    return get<Dictionary>(key);
}

std::optional<Preferences::Data> FakePreferences::data(std::string_view key) const {
    return get<Data>(key);
}

void FakePreferences::setBoolean(std::string_view key, bool value) {
    set(key, value);
}

void FakePreferences::setString(std::string_view key, std::string_view value) {
    set(key, std::string(value));
}

void FakePreferences::setNumber(std::string_view key, double value) {
    set(key, value);
}

void FakePreferences::setInteger(std::string_view key, std::int64_t value) {
    set(key, value);
}

void FakePreferences::setDictionary(std::string_view key, const Dictionary& value) {
    set(key, value);
}

void FakePreferences::setData(std::string_view key, const Data& value) {
    set(key, value);
}

void FakePreferences::remove(std::string_view key) {
    ++m_writes;
    if (const auto found = m_values.find(key); found != m_values.end())
        m_values.erase(found);
}

} // namespace nightjar
