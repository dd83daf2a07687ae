// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/json/JsonValue.h"
#include "core/json/JsonWriter.h"

#include <QObject>

#include <algorithm>
#include <cstddef>
#include <expected>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nightjar::headless {

/// A value that came in: as parsed, and as it was written.
struct Argument {
    const json::JsonValue& value;
    std::string_view text;
};

/// Takes the changes of a record list, one record at a time.
class ElementSink {
public:
    virtual ~ElementSink() = default;
    /// Whether the rest has to wait.
    [[nodiscard]] virtual bool isFull() const = 0;
    /// `id` and `value` are JSON; the value of a removed record is null.
    virtual void element(std::string_view id, std::string_view value) = 0;
};

/// A field of a controller as it is seen from outside.
struct Field {
    std::string name;
    std::function<void(json::JsonWriter&)> write;
    /// A sentence where the value is refused; empty for a field that can only be read.
    std::function<std::expected<void, std::string>(const Argument&)> set{};
    /// Calls back after each change for as long as `context` lives; empty for a field that only answers to
    /// "get".
    std::function<void(QObject* context, std::function<void()> changed)> observe{};
    /// For a list of records: tells what has changed since the last time. False: the sink was full before the
    /// end. Empty for a field that is published whole.
    std::move_only_function<bool(ElementSink&)> tellChanges{};
};

/// An operation of a controller as it is called from outside.
struct Operation {
    /// The returned value as JSON, empty for an operation that returns nothing; or a sentence why it was
    /// refused.
    using Outcome = std::expected<std::string, std::string>;

    std::string name;
    std::size_t fewestArguments = 0;
    std::size_t mostArguments = 0;
    std::function<Outcome(std::span<const Argument>)> call;
};

/// All that a controller shows and can be told to do. The controller outlives its table. Main thread.
struct ControllerTable {
    std::string name;
    std::vector<Field> fields;
    std::vector<Operation> operations;

    [[nodiscard]] const Field* field(std::string_view wanted) const { return find(fields, wanted); }
    [[nodiscard]] const Operation* operation(std::string_view wanted) const {
        return find(operations, wanted);
    }

private:
    template <class Entry>
    [[nodiscard]] static const Entry* find(const std::vector<Entry>& entries, std::string_view wanted) {
        const auto found = std::ranges::find(entries, wanted, &Entry::name);
        return found == entries.end() ? nullptr : &*found;
    }
};

} // namespace nightjar::headless
