// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Date.h"
#include "core/base/Uuid.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

/// One description of a record's fields drives its reading and its writing, in whatever file or line it travels.
namespace nightjar::json {

enum class Type : std::uint8_t {
    boolean,
    int32,
    uint32,
    int64,
    float32,
    float64,
    string,
    stringList,
    uuid,
    date,
    enumeration,
    record
};

enum class Presence : std::uint8_t {
    required, ///< missing or null fails the whole record
    optional, ///< missing or null is absent; absent is left out
    defaulted ///< missing leaves the value that a new record has
};

struct Schema;

/// One field: its key, its type, and how to reach the member in a record of unknown type.
struct Field {
    std::string_view name;
    Type type;
    Presence presence;
    /// The value to fill; a `std::optional` member is given one.
    void* (*make)(void* record);
    /// The value to write; null when absent.
    const void* (*find)(const void* record);
    const Schema* record = nullptr;             ///< of a nested record
    std::span<const std::string_view> names{};  ///< of an enumeration: the raw values in case order
    void (*setCase)(void*, std::size_t) = nullptr;
    std::size_t (*getCase)(const void*) = nullptr;
};

struct Schema {
    std::span<const Field> fields; ///< at most 64
};

/// The description of a record type; specialised beside the record.
template <class Record>
const Schema& schemaOf();

namespace detail {

template <auto Member>
struct MemberTraits;
template <class R, class V, V R::*Member>
struct MemberTraits<Member> {
    using Record = R;
    using Value = V;
};

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

template <class T>
struct Unwrapped {
    using type = T;
};
template <class T>
struct Unwrapped<std::optional<T>> {
    using type = T;
};

template <class T>
consteval Type typeOf() {
    if constexpr (std::is_same_v<T, bool>) return Type::boolean;
    else if constexpr (std::is_same_v<T, std::int32_t>) return Type::int32;
    else if constexpr (std::is_same_v<T, std::uint32_t>) return Type::uint32;
    else if constexpr (std::is_same_v<T, std::int64_t>) return Type::int64;
    else if constexpr (std::is_same_v<T, float>) return Type::float32;
    else if constexpr (std::is_same_v<T, double>) return Type::float64;
    else if constexpr (std::is_same_v<T, std::string>) return Type::string;
    else if constexpr (std::is_same_v<T, std::vector<std::string>>) return Type::stringList;
    else if constexpr (std::is_same_v<T, Uuid>) return Type::uuid;
    else if constexpr (std::is_same_v<T, Date>) return Type::date;
    else if constexpr (std::is_enum_v<T>) return Type::enumeration;
    else return Type::record;
}

template <auto Member>
void* make(void* record) {
    auto& member = static_cast<typename MemberTraits<Member>::Record*>(record)->*Member;
    if constexpr (isOptional<std::remove_cvref_t<decltype(member)>>) return &member.emplace();
    else return &member;
}

template <auto Member>
const void* find(const void* record) {
    const auto& member = static_cast<const typename MemberTraits<Member>::Record*>(record)->*Member;
    if constexpr (isOptional<std::remove_cvref_t<decltype(member)>>) return member ? &*member : nullptr;
    else return &member;
}

template <class Enum>
void setCase(void* value, std::size_t index) {
    *static_cast<Enum*>(value) = static_cast<Enum>(index);
}
template <class Enum>
std::size_t getCase(const void* value) {
    return static_cast<std::size_t>(*static_cast<const Enum*>(value));
}

} // namespace detail

/// The field of a member; a `std::optional` member is optional, any other required.
template <auto Member>
constexpr Field field(std::string_view name) {
    using Value = typename detail::MemberTraits<Member>::Value;
    constexpr auto type = detail::typeOf<typename detail::Unwrapped<Value>::type>();
    static_assert(type != Type::enumeration && type != Type::record, "use enumeration() or record()");
    return {.name = name,
            .type = type,
            .presence = detail::isOptional<Value> ? Presence::optional : Presence::required,
            .make = detail::make<Member>,
            .find = detail::find<Member>};
}

/// A field that keeps its member's initial value when it is missing.
template <auto Member>
constexpr Field defaulted(std::string_view name) {
    Field result = field<Member>(name);
    result.presence = Presence::defaulted;
    return result;
}

/// A field whose value is one of `names`, the raw values of the enumeration in case order.
template <auto Member>
constexpr Field enumeration(std::string_view name, std::span<const std::string_view> names) {
    using Value = typename detail::MemberTraits<Member>::Value;
    using Enum = typename detail::Unwrapped<Value>::type;
    return {.name = name,
            .type = Type::enumeration,
            .presence = detail::isOptional<Value> ? Presence::optional : Presence::required,
            .make = detail::make<Member>,
            .find = detail::find<Member>,
            .names = names,
            .setCase = detail::setCase<Enum>,
            .getCase = detail::getCase<Enum>};
}

/// A field that holds a record of its own.
template <auto Member>
Field record(std::string_view name) {
    using Value = typename detail::MemberTraits<Member>::Value;
    return {.name = name,
            .type = Type::record,
            .presence = detail::isOptional<Value> ? Presence::optional : Presence::required,
            .make = detail::make<Member>,
            .find = detail::find<Member>,
            .record = &schemaOf<typename detail::Unwrapped<Value>::type>()};
}

} // namespace nightjar::json
