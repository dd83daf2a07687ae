// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/ControllerTable.h"
#include "app/headless/IndexedRecords.h"
#include "app/headless/JsonForm.h"
#include "app/headless/RecordChanges.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

namespace nightjar::headless {

/// Describes a controller, one row per field and operation; the JSON forms follow from the C++ types.
template <class Controller>
class TableBuilder {
public:
    TableBuilder(std::string_view name, Controller& controller) : m_controller(controller) {
        m_table.name = name;
    }

    /// A field that is printed whole after each change.
    template <class Getter, class Signal>
    TableBuilder& published(std::string_view name, Getter getter, Signal signal) {
        readable(name, getter).m_table.fields.back().observe = observer(signal);
        return *this;
    }

    /// A published field that can also be set.
    template <class Getter, class Setter, class Signal>
    TableBuilder& settable(std::string_view name, Getter getter, Setter setter, Signal signal) {
        published(name, getter, signal);
        m_table.fields.back().set = [target = &m_controller, setter, name = std::string(name)](
                                        const Argument& argument) -> std::expected<void, std::string> {
            auto value = JsonForm<Value<Getter>>::read(argument);
            if (!value)
                return std::unexpected(name + " takes " + JsonForm<Value<Getter>>::taken() + '.');
            std::invoke(setter, *target, *std::move(value));
            return {};
        };
        return *this;
    }

    /// A list of records that is printed element by element; `Changes` is `ChangingRecords` or
    /// `AppendedRecords`.
    template <template <class> class Changes, class Getter, class Signal>
    TableBuilder& list(std::string_view name, Getter getter, Signal signal) {
        published(name, getter, signal);
        using Record = typename Value<Getter>::value_type;
        m_table.fields.back().tellChanges = [target = &m_controller, getter,
                                             changes = Changes<Record>()](ElementSink& sink) mutable {
            return changes.tell(std::invoke(getter, *target), sink);
        };
        return *this;
    }

    /// A list of records that is printed element by element and tells which have changed: `changedAt` is a
    /// signal with the place of a record that is new or has changed, `cleared` one that the list is empty.
    template <class Getter, class ChangedAt, class Cleared>
    TableBuilder& indexedList(std::string_view name, Getter getter, ChangedAt changedAt, Cleared cleared) {
        using Record = typename Value<Getter>::value_type;
        auto changes = std::make_shared<IndexedRecords<Record>>();
        for (std::size_t i = 0; i < std::invoke(getter, m_controller).size(); ++i)
            changes->noteChanged(i);
        Field& field = readable(name, getter).m_table.fields.back();
        field.observe = [target = &m_controller, changedAt, cleared, changes](QObject* context,
                                                                              std::function<void()> changed) {
            QObject::connect(target, changedAt, context, [changes, changed](std::size_t index) {
                changes->noteChanged(index);
                changed();
            });
            QObject::connect(target, cleared, context, [changes, changed] {
                changes->noteCleared();
                changed();
            });
        };
        field.tellChanges = [target = &m_controller, getter, changes](ElementSink& sink) {
            return changes->tell(std::invoke(getter, *target), sink);
        };
        return *this;
    }

    /// A field that only answers to "get".
    template <class Getter>
    TableBuilder& readable(std::string_view name, Getter getter) {
        m_table.fields.push_back(
            {.name = std::string(name), .write = [target = &m_controller, getter](json::JsonWriter& writer) {
                 JsonForm<Value<Getter>>::write(writer, std::invoke(getter, *target));
             }});
        return *this;
    }

    template <class Result, class... Parameters>
    TableBuilder& operation(std::string_view name, Result (Controller::*function)(Parameters...)) {
        return add<Result, std::remove_cvref_t<Parameters>...>(name, function);
    }
    template <class Result, class... Parameters>
    TableBuilder& operation(std::string_view name, Result (Controller::*function)(Parameters...) const) {
        return add<Result, std::remove_cvref_t<Parameters>...>(name, function);
    }
    /// For an operation that is called in another form than in the code, as with the id of a record. May
    /// refuse by returning `std::expected<void, std::string>`.
    template <class Result, class... Parameters>
    TableBuilder& operation(std::string_view name, Result (*function)(Controller&, Parameters...)) {
        return add<Result, std::remove_cvref_t<Parameters>...>(name, function);
    }

    [[nodiscard]] ControllerTable build() { return std::move(m_table); }

private:
    template <class Getter>
    using Value = std::remove_cvref_t<std::invoke_result_t<Getter, Controller&>>;
    using Refusal = std::expected<void, std::string>;

    template <class Signal>
    auto observer(Signal signal) {
        return [target = &m_controller, signal](QObject* context, std::function<void()> changed) {
            QObject::connect(target, signal, context, std::move(changed));
        };
    }

    template <class Result, class... Parameters, class Function>
    TableBuilder& add(std::string_view name, Function function) {
        auto call = [target = &m_controller, function,
                     name = std::string(name)](std::span<const Argument> arguments) -> Operation::Outcome {
            std::tuple<std::optional<Parameters>...> read;
            if (auto problem =
                    readAll<Parameters...>(arguments, read, std::index_sequence_for<Parameters...>())) {
                return std::unexpected(name + ' ' + *problem);
            }
            return std::apply(
                [&](auto&... values) { return invoke<Result>(function, *target, *std::move(values)...); },
                read);
        };
        m_table.operations.push_back({.name = std::string(name),
                                      .fewestArguments = fewest<Parameters...>(),
                                      .mostArguments = sizeof...(Parameters),
                                      .call = std::move(call)});
        return *this;
    }

    /// Optional arguments at the end may be left out.
    template <class... Parameters>
    static consteval std::size_t fewest() {
        std::size_t count = 0;
        std::size_t index = 0;
        ((++index, count = isOptional<Parameters> ? count : index), ...);
        return count;
    }

    template <class... Parameters, std::size_t... Indices>
    static std::optional<std::string> readAll(std::span<const Argument> arguments,
                                              std::tuple<std::optional<Parameters>...>& read,
                                              std::index_sequence<Indices...>) {
        std::optional<std::string> problem;
        [[maybe_unused]] const auto readOne = [&]<class T>(std::size_t index, std::optional<T>& value) {
            if (index >= arguments.size()) {
                value.emplace();
                return true;
            }
            value = JsonForm<T>::read(arguments[index]);
            if (!value)
                problem = "takes " + JsonForm<T>::taken() + " as argument " + std::to_string(index + 1) + '.';
            return value.has_value();
        };
        (void)(readOne(Indices, std::get<Indices>(read)) && ...);
        return problem;
    }

    template <class Result, class Function, class... Values>
    static Operation::Outcome invoke(Function function, Controller& controller, Values&&... values) {
        if constexpr (std::is_void_v<Result>) {
            std::invoke(function, controller, std::forward<Values>(values)...);
            return std::string();
        } else if constexpr (std::is_same_v<Result, Refusal>) {
            const Refusal answer = std::invoke(function, controller, std::forward<Values>(values)...);
            if (!answer)
                return std::unexpected(answer.error());
            return std::string();
        } else {
            return jsonText(std::invoke(function, controller, std::forward<Values>(values)...));
        }
    }

    Controller& m_controller;
    ControllerTable m_table;
};

} // namespace nightjar::headless
