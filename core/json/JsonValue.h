// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/json/JsonWriter.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace nightjar::json {

/// JSON of any shape, for texts that no record describes: preferences, scenarios, operations.
class JsonValue {
public:
    using Array = std::vector<JsonValue>;
    using Object = std::map<std::string, JsonValue, std::less<>>;
    /// An integer that fits is an `int64_t`, every other number a `double`.
    using Storage = std::variant<std::nullptr_t, bool, std::int64_t, double, std::string, Array, Object>;

    JsonValue() = default;
    template <class T>
    requires std::is_constructible_v<Storage, T&&> &&
        (!std::is_same_v<std::remove_cvref_t<T>, JsonValue>)JsonValue(T&& value)
        : m_storage(std::forward<T>(value)) {} // NOLINT(google-explicit-constructor)

    /// Absent for anything that is not one JSON value, with the decoder's bounds.
    [[nodiscard]] static std::optional<JsonValue> parse(std::string_view text);
    void write(JsonWriter& writer) const;
    [[nodiscard]] std::string text(Layout layout = Layout::compact) const;

    [[nodiscard]] bool isNull() const { return std::holds_alternative<std::nullptr_t>(m_storage); }
    template <class T>
    [[nodiscard]] const T* get() const {
        return std::get_if<T>(&m_storage);
    }
    /// The value of any number, integers included.
    [[nodiscard]] std::optional<double> number() const;
    /// An integer within the range of `Integer`; 3.0 is none.
    template <class Integer>
    [[nodiscard]] std::optional<Integer> integer() const {
        const auto* value = get<std::int64_t>();
        if (!value || !std::in_range<Integer>(*value))
            return std::nullopt;
        return static_cast<Integer>(*value);
    }
    /// The member of an object; null when there is none or this is no object.
    [[nodiscard]] const JsonValue* member(std::string_view key) const;

    bool operator==(const JsonValue&) const = default;

private:
    Storage m_storage = nullptr;
};

} // namespace nightjar::json
