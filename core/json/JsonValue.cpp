// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/json/JsonValue.h"

#include "core/json/JsonParser.h"

namespace nightjar::json {
namespace {

using simdjson::dom::element;
using simdjson::dom::element_type;

JsonValue convert(const element& value) {
    switch (value.type()) {
    case element_type::BOOL:
        return bool(value);
    case element_type::INT64:
        return std::int64_t(value);
    case element_type::UINT64:
        return static_cast<double>(std::uint64_t(value));
    case element_type::DOUBLE:
        return double(value);
    case element_type::STRING:
        return std::string(std::string_view(value));
    case element_type::ARRAY: {
        JsonValue::Array array;
        for (const element item : simdjson::dom::array(value))
            array.push_back(convert(item));
        return array;
    }
    case element_type::OBJECT: {
        JsonValue::Object object;
        for (const auto [key, item] : simdjson::dom::object(value))
            object.try_emplace(std::string(key), convert(item));
        return object;
    }
    case element_type::NULL_VALUE:
        break;
    }
    return {};
}

} // namespace

std::optional<JsonValue> JsonValue::parse(std::string_view text) {
    JsonParser parser;
    element root;
    if (parser.parse(text).get(root))
        return std::nullopt;
    return convert(root);
}

std::optional<double> JsonValue::number() const {
    if (const auto* whole = get<std::int64_t>())
        return static_cast<double>(*whole);
    if (const auto* real = get<double>())
        return *real;
    return std::nullopt;
}

const JsonValue* JsonValue::member(std::string_view key) const {
    const auto* object = get<Object>();
    if (!object)
        return nullptr;
    const auto found = object->find(key);
    return found == object->end() ? nullptr : &found->second;
}

void JsonValue::write(JsonWriter& writer) const {
    if (const auto* truth = get<bool>())
        return writer.boolean(*truth);
    if (const auto* whole = get<std::int64_t>())
        return writer.integer(*whole);
    if (const auto* real = get<double>())
        return writer.number(*real);
    if (const auto* words = get<std::string>())
        return writer.string(*words);
    if (const auto* array = get<Array>()) {
        writer.beginArray();
        for (const auto& item : *array)
            item.write(writer);
        return writer.endArray();
    }
    if (const auto* object = get<Object>()) {
        writer.beginObject();
        for (const auto& [key, item] : *object) {
            writer.key(key);
            item.write(writer);
        }
        return writer.endObject();
    }
    writer.null();
}

std::string JsonValue::text(Layout layout) const {
    std::string out;
    JsonWriter writer(out, layout);
    write(writer);
    return out;
}

} // namespace nightjar::json
