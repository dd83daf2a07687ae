// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/ControllerTable.h"
#include "core/base/Uuid.h"
#include "core/json/Decoder.h"
#include "core/json/Encoder.h"
#include "core/json/JsonWriter.h"

#include <algorithm>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <deque>
#include <limits>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace nightjar::headless {

/// The raw values of an enumeration in case order: `static constexpr std::span<const std::string_view>
/// names`.
template <class Enum>
struct CaseNames;

/// How a value of the controllers is written as JSON, how it is read, and what a reader is told that it
/// takes. Records have the form that their description gives them, with ISO-8601 dates.
template <class T>
struct JsonForm {
    static void write(json::JsonWriter& writer, const T& record) {
        json::Encoder(json::DateForm::iso8601).write(writer, record);
    }
    static std::optional<T> read(const Argument& argument) {
        return json::Decoder(json::DateForm::iso8601).decode<T>(argument.text);
    }
    static std::string taken() { return "an object with all the fields of its record"; }
};

template <>
struct JsonForm<bool> {
    static void write(json::JsonWriter& writer, bool value) { writer.boolean(value); }
    static std::optional<bool> read(const Argument& argument) {
        const auto* value = argument.value.get<bool>();
        return value ? std::optional(*value) : std::nullopt;
    }
    static std::string taken() { return "true or false"; }
};

template <std::integral Integer>
struct JsonForm<Integer> {
    static void write(json::JsonWriter& writer, Integer value) { writer.integer(std::int64_t{value}); }
    static std::optional<Integer> read(const Argument& argument) { return argument.value.integer<Integer>(); }
    static std::string taken() {
        using Limits = std::numeric_limits<Integer>;
        return "a whole number from " + std::to_string(Limits::min()) + " to " +
               std::to_string(Limits::max());
    }
};

template <>
struct JsonForm<double> {
    static void write(json::JsonWriter& writer, double value) { writer.number(value); }
    static std::optional<double> read(const Argument& argument) {
        const auto value = argument.value.number();
        return value && std::isfinite(*value) ? value : std::nullopt;
    }
    static std::string taken() { return "a number"; }
};

template <>
struct JsonForm<std::string> {
    static void write(json::JsonWriter& writer, std::string_view value) { writer.string(value); }
    static std::optional<std::string> read(const Argument& argument) {
        const auto* value = argument.value.get<std::string>();
        return value ? std::optional(*value) : std::nullopt;
    }
    static std::string taken() { return "a text"; }
};

template <>
struct JsonForm<Uuid> {
    static void write(json::JsonWriter& writer, const Uuid& value) { writer.uuid(value); }
    static std::optional<Uuid> read(const Argument& argument) {
        const auto* text = argument.value.get<std::string>();
        return text ? Uuid::fromText(*text) : std::nullopt;
    }
    static std::string taken() { return "an identifier such as \"3F2504E0-4F89-11D3-9A0C-0305E82C3301\""; }
};

template <class Enum>
requires std::is_enum_v<Enum>
struct JsonForm<Enum> {
    static void write(json::JsonWriter& writer, Enum value) {
        writer.string(CaseNames<Enum>::names[static_cast<std::size_t>(value)]);
    }
    static std::optional<Enum> read(const Argument& argument) {
        const auto* text = argument.value.get<std::string>();
        if (!text)
            return std::nullopt;
        const std::span<const std::string_view> names = CaseNames<Enum>::names;
        const auto found = std::ranges::find(names, *text);
        return found == names.end() ? std::nullopt : std::optional(static_cast<Enum>(found - names.begin()));
    }
    static std::string taken() {
        std::string text = "one of";
        for (const std::string_view name : std::span<const std::string_view>(CaseNames<Enum>::names)) {
            text.append(text.ends_with("of") ? " \"" : ", \"").append(name).append("\"");
        }
        return text;
    }
};

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

/// Absent is null.
template <class T>
struct JsonForm<std::optional<T>> {
    static void write(json::JsonWriter& writer, const std::optional<T>& value) {
        if (value)
            JsonForm<T>::write(writer, *value);
        else
            writer.null();
    }
    static std::optional<std::optional<T>> read(const Argument& argument) {
        using Read = std::optional<std::optional<T>>;
        if (argument.value.isNull())
            return Read(std::in_place);
        auto value = JsonForm<T>::read(argument);
        return value ? Read(std::in_place, std::move(value)) : Read();
    }
    static std::string taken() { return JsonForm<T>::taken() + " or null"; }
};

template <class T>
struct JsonForm<std::vector<T>> {
    static void write(json::JsonWriter& writer, std::span<const T> values) {
        writer.beginArray();
        for (const T& value : values)
            JsonForm<T>::write(writer, value);
        writer.endArray();
    }
};

template <class T>
struct JsonForm<std::deque<T>> {
    static void write(json::JsonWriter& writer, const std::deque<T>& values) {
        writer.beginArray();
        for (const T& value : values)
            JsonForm<T>::write(writer, value);
        writer.endArray();
    }
};

/// An object; a number as a key is written in decimal.
template <class Key, class T>
struct JsonForm<std::map<Key, T>> {
    static void write(json::JsonWriter& writer, const std::map<Key, T>& values) {
        writer.beginObject();
        for (const auto& [key, value] : values) {
            if constexpr (std::integral<Key>)
                writer.key(std::to_string(key));
            else
                writer.key(key);
            JsonForm<T>::write(writer, value);
        }
        writer.endObject();
    }
};

template <class T>
[[nodiscard]] std::string jsonText(const T& value) {
    std::string text;
    json::JsonWriter writer(text);
    JsonForm<T>::write(writer, value);
    return text;
}

} // namespace nightjar::headless
