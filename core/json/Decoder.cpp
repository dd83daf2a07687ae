// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/json/Decoder.h"

#include "core/json/JsonParser.h"

#include <cmath>
#include <limits>
#include <utility>

namespace nightjar::json {
namespace {

using simdjson::dom::element;

template <class Integer>
bool readInteger(const element& value, void* out) {
    std::int64_t number = 0;
    if (value.get_int64().get(number))
        return false;
    if (!std::in_range<Integer>(number))
        return false;
    *static_cast<Integer*>(out) = static_cast<Integer>(number);
    return true;
}

bool readDouble(const element& value, double& out) {
    return !value.get_double().get(out) && std::isfinite(out);
}

bool readFloat(const element& value, void* out) {
    double number = 0;
    if (!readDouble(value, number))
        return false;
    const auto narrowed = static_cast<float>(number);
    *static_cast<float*>(out) = narrowed;
    return std::isfinite(narrowed);
}

bool readString(const element& value, void* out) {
    std::string_view text;
    if (value.get_string().get(text))
        return false;
    static_cast<std::string*>(out)->assign(text);
    return true;
}

bool readStringList(const element& value, void* out) {
    simdjson::dom::array array;
    if (value.get_array().get(array))
        return false;
    auto& list = *static_cast<std::vector<std::string>*>(out);
    list.clear();
    for (const element item : array) {
        if (!readString(item, &list.emplace_back()))
            return false;
    }
    return true;
}

bool readUuid(const element& value, void* out) {
    std::string_view text;
    if (value.get_string().get(text))
        return false;
    const auto uuid = Uuid::fromText(text);
    if (!uuid)
        return false;
    *static_cast<Uuid*>(out) = *uuid;
    return true;
}

bool readDate(const element& value, DateForm form, void* out) {
    if (form == DateForm::secondsSince2001) {
        double seconds = 0;
        if (!readDouble(value, seconds))
            return false;
        *static_cast<Date*>(out) = Date{Seconds{seconds}};
        return true;
    }
    std::string_view text;
    if (value.get_string().get(text))
        return false;
    const auto date = dateFromIso8601(text);
    if (!date)
        return false;
    *static_cast<Date*>(out) = *date;
    return true;
}

bool readCase(const element& value, const Field& field, void* out) {
    std::string_view text;
    if (value.get_string().get(text))
        return false;
    for (std::size_t i = 0; i < field.names.size(); ++i) {
        if (field.names[i] != text)
            continue;
        field.setCase(out, i);
        return true;
    }
    return false;
}

bool readRecord(const element& value, const Schema& schema, DateForm dates, void* record);

bool readValue(const element& value, const Field& field, DateForm dates, void* out) {
    switch (field.type) {
    case Type::boolean:
        return !value.get_bool().get(*static_cast<bool*>(out));
    case Type::int32:
        return readInteger<std::int32_t>(value, out);
    case Type::uint32:
        return readInteger<std::uint32_t>(value, out);
    case Type::int64:
        return readInteger<std::int64_t>(value, out);
    case Type::float32:
        return readFloat(value, out);
    case Type::float64:
        return readDouble(value, *static_cast<double*>(out));
    case Type::string:
        return readString(value, out);
    case Type::stringList:
        return readStringList(value, out);
    case Type::uuid:
        return readUuid(value, out);
    case Type::date:
        return readDate(value, dates, out);
    case Type::enumeration:
        return readCase(value, field, out);
    case Type::record:
        return readRecord(value, *field.record, dates, out);
    }
    return false;
}

constexpr std::size_t notFound = std::numeric_limits<std::size_t>::max();

/// The field named `key`. Writers mostly keep one order, so the search starts behind the field found last.
std::size_t indexOf(std::string_view key, std::span<const Field> fields, std::size_t start) {
    for (std::size_t step = 0; step < fields.size(); ++step) {
        const std::size_t index = start + step < fields.size() ? start + step : start + step - fields.size();
        if (fields[index].name == key)
            return index;
    }
    return notFound;
}

bool readRecord(const element& value, const Schema& schema, DateForm dates, void* record) {
    simdjson::dom::object object;
    if (value.get_object().get(object))
        return false;

    std::uint64_t seen = 0;
    std::size_t next = 0;
    for (const auto [key, item] : object) {
        const std::size_t index = indexOf(key, schema.fields, next);
        if (index == notFound)
            continue;
        next = index + 1 == schema.fields.size() ? 0 : index + 1;
        const std::uint64_t bit = std::uint64_t{1} << index;
        if (seen & bit)
            continue;
        seen |= bit;

        const Field& field = schema.fields[index];
        if (item.is_null()) {
            if (field.presence == Presence::required)
                return false;
            continue;
        }
        if (!readValue(item, field, dates, field.make(record)))
            return false;
    }
    return (schema.required & ~seen) == 0;
}

/// A text above this size does not keep its buffers.
constexpr std::size_t unusuallyLarge = std::size_t{4} << 20;

} // namespace

struct Decoder::Parser : JsonParser {};

Decoder::Decoder(DateForm dates) : m_dates(dates), m_parser(std::make_unique<Parser>()) {}
Decoder::~Decoder() = default;
Decoder::Decoder(Decoder&&) noexcept = default;
Decoder& Decoder::operator=(Decoder&&) noexcept = default;

bool Decoder::decodeRecord(std::string_view text, const Schema& schema, void* record) {
    element root;
    const bool read = !m_parser->parse(text).get(root) && readRecord(root, schema, m_dates, record);
    if (text.size() > unusuallyLarge)
        m_parser->release();
    return read;
}

bool Decoder::decodeRecords(std::string_view text, const Schema& schema, void* (*append)(void*), void* list) {
    simdjson::dom::array array;
    bool read = !m_parser->parse(text).get_array().get(array);
    if (read) {
        for (const element item : array) {
            read = readRecord(item, schema, m_dates, append(list));
            if (!read)
                break;
        }
    }
    if (text.size() > unusuallyLarge)
        m_parser->release();
    return read;
}

} // namespace nightjar::json
