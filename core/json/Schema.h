// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Date.h"
#include "core/base/Uuid.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

/// One description of a record's fields drives its reading and its writing, in whatever file or line it
/// travels.
namespace nightjar::json {

enum class DateForm {
    iso8601,         ///< "2025-05-01T12:34:56Z"
    secondsSince2001 ///< a number: seconds since 2001-01-01 00:00:00 UTC
};

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
    defaulted ///< missing or null leaves the value that a new record has
};

struct Schema;

/// The first and the last eight bytes of a key as numbers: most keys are told apart at once.
struct KeyBytes {
    std::uint64_t first = 0;     ///< zeros behind a key that is shorter
    std::uint64_t firstMask = 0; ///< ones where `first` has bytes of the key
    std::uint64_t last = 0;      ///< of a key of at least eight bytes

    constexpr KeyBytes() = default;
    constexpr explicit KeyBytes(std::string_view key) {
        std::array<char, 8> head{};
        std::array<char, 8> mask{};
        for (std::size_t i = 0; i < std::min(key.size(), head.size()); ++i) {
            head[i] = key[i];
            mask[i] = '\xFF';
        }
        first = std::bit_cast<std::uint64_t>(head);
        firstMask = std::bit_cast<std::uint64_t>(mask);
        if (key.size() < head.size())
            return;
        for (std::size_t i = 0; i < head.size(); ++i)
            head[i] = key[key.size() - head.size() + i];
        last = std::bit_cast<std::uint64_t>(head);
    }
};

/// One field: its key, its type, and how to reach the member in a record of unknown type.
struct Field {
    std::string_view name;
    KeyBytes nameBytes;
    Type type;
    Presence presence;
    /// The value to fill; a `std::optional` member is given one.
    void* (*make)(void* record);
    /// The value to write; null when absent.
    const void* (*find)(const void* record);
    const Schema* record = nullptr;            ///< of a nested record
    std::span<const std::string_view> names{}; ///< of an enumeration: the raw values in case order
    void (*setCase)(void*, std::size_t) = nullptr;
    std::size_t (*getCase)(const void*) = nullptr;
};

/// The fields of a record, at most 64, in the order in which they are declared and written.
struct Schema {
    static constexpr std::size_t mostFields = 64;

    constexpr explicit Schema(std::span<const Field> all) : fields(all) {
        for (std::size_t i = 0; i < fields.size(); ++i) {
            sortedOrder[i] = static_cast<std::uint8_t>(i);
            if (fields[i].presence == Presence::required)
                required |= std::uint64_t{1} << i;
        }
        const auto used = std::span(sortedOrder).first(fields.size());
        std::ranges::sort(used, {}, [&](std::uint8_t index) { return fields[index].name; });
    }

    std::span<const Field> fields;
    std::uint64_t required = 0;                         ///< a bit for each field
    std::array<std::uint8_t, mostFields> sortedOrder{}; ///< the fields by their names
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
    if constexpr (std::is_same_v<T, bool>)
        return Type::boolean;
    else if constexpr (std::is_same_v<T, std::int32_t>)
        return Type::int32;
    else if constexpr (std::is_same_v<T, std::uint32_t>)
        return Type::uint32;
    else if constexpr (std::is_same_v<T, std::int64_t>)
        return Type::int64;
    else if constexpr (std::is_same_v<T, float>)
        return Type::float32;
    else if constexpr (std::is_same_v<T, double>)
        return Type::float64;
    else if constexpr (std::is_same_v<T, std::string>)
        return Type::string;
    else if constexpr (std::is_same_v<T, std::vector<std::string>>)
        return Type::stringList;
    else if constexpr (std::is_same_v<T, Uuid>)
        return Type::uuid;
    else if constexpr (std::is_same_v<T, Date>)
        return Type::date;
    else if constexpr (std::is_enum_v<T>)
        return Type::enumeration;
    else
        return Type::record;
}

template <auto Member>
void* make(void* record) {
    auto& member = static_cast<typename MemberTraits<Member>::Record*>(record)->*Member;
    if constexpr (isOptional<std::remove_cvref_t<decltype(member)>>)
        return &member.emplace();
    else
        return &member;
}

template <auto Member>
const void* find(const void* record) {
    const auto& member = static_cast<const typename MemberTraits<Member>::Record*>(record)->*Member;
    if constexpr (isOptional<std::remove_cvref_t<decltype(member)>>)
        return member ? &*member : nullptr;
    else
        return &member;
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
            .nameBytes = KeyBytes(name),
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
            .nameBytes = KeyBytes(name),
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
            .nameBytes = KeyBytes(name),
            .type = Type::record,
            .presence = detail::isOptional<Value> ? Presence::optional : Presence::required,
            .make = detail::make<Member>,
            .find = detail::find<Member>,
            .record = &schemaOf<typename detail::Unwrapped<Value>::type>()};
}

} // namespace nightjar::json
