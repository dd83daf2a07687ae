// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/json/JsonValue.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>

namespace nightjar::bridge {

/// The first thing found wrong in a file; what follows is mostly its consequence.
class Problem {
public:
    void report(std::string_view path, std::string_view complaint);
    [[nodiscard]] const std::optional<std::string>& sentence() const { return m_sentence; }

private:
    std::optional<std::string> m_sentence;
};

struct NumberRange {
    double least = 0;
    double most = 0;
};

/// Reads the members of one JSON object strictly. What is wrong is reported with its path
/// ("nodes[3].movement.speed"), and the getter then answers as if the member were missing. Borrows the value
/// and the problem.
class ObjectReader {
public:
    ObjectReader(const json::JsonValue& value, std::string path, Problem& problem);

    /// Reports keys that no getter asked for, so that a typing error is not taken for a default.
    void finish() const;
    /// Reports a member that is missing.
    ObjectReader& require(std::string_view key);
    [[nodiscard]] bool has(std::string_view key);
    /// A complaint about one member.
    void complain(std::string_view key, std::string_view complaint);

    [[nodiscard]] std::optional<double> number(std::string_view key, NumberRange range);
    [[nodiscard]] std::optional<std::string> text(std::string_view key);
    [[nodiscard]] std::optional<bool> flag(std::string_view key);
    /// The index of one of `names`.
    [[nodiscard]] std::optional<std::size_t> choice(std::string_view key,
                                                    std::span<const std::string_view> names);
    /// Null where the member is missing or no object of ours to read; the raw value for other readers.
    [[nodiscard]] const json::JsonValue* value(std::string_view key);
    [[nodiscard]] std::optional<ObjectReader> object(std::string_view key);
    /// Calls `read` with each element of an array and its path; returns whether there was an array.
    bool each(std::string_view key,
              const std::function<void(const json::JsonValue&, const std::string&)>& read);
    bool eachObject(std::string_view key, const std::function<void(ObjectReader&)>& read);

    template <class Integer>
    [[nodiscard]] std::optional<Integer> integer(std::string_view key,
                                                 Integer least = std::numeric_limits<Integer>::min(),
                                                 Integer most = std::numeric_limits<Integer>::max()) {
        const auto whole = wholeNumber(key, static_cast<double>(least), static_cast<double>(most));
        return whole ? std::optional(static_cast<Integer>(*whole)) : std::nullopt;
    }

    [[nodiscard]] Problem& problem() const { return m_problem; }
    [[nodiscard]] std::string pathOf(std::string_view key) const;

private:
    [[nodiscard]] std::optional<std::int64_t> wholeNumber(std::string_view key, double least, double most);

    const json::JsonValue::Object* m_object;
    std::string m_path;
    std::reference_wrapper<Problem> m_problem;
    std::set<std::string, std::less<>> m_asked;
};

} // namespace nightjar::bridge
