// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/json/Encoder.h"

namespace nightjar::json {

void Encoder::writeRecord(JsonWriter& writer, const Schema& schema, const void* record) const {
    writer.beginObject();
    for (std::size_t i = 0; i < schema.fields.size(); ++i) {
        const Field& field = schema.fields[m_order == KeyOrder::sorted ? schema.sortedOrder[i] : i];
        const void* value = field.find(record);
        if (!value)
            continue;
        writer.plainKey(field.name);
        writeField(writer, field, value);
    }
    writer.endObject();
}

void Encoder::writeField(JsonWriter& writer, const Field& field, const void* value) const {
    switch (field.type) {
    case Type::boolean:
        return writer.boolean(*static_cast<const bool*>(value));
    case Type::int32:
        return writer.integer(*static_cast<const std::int32_t*>(value));
    case Type::uint32:
        return writer.integer(*static_cast<const std::uint32_t*>(value));
    case Type::int64:
        return writer.integer(*static_cast<const std::int64_t*>(value));
    case Type::float32:
        return writer.number(*static_cast<const float*>(value));
    case Type::float64:
        return writer.number(*static_cast<const double*>(value));
    case Type::string:
        return writer.string(*static_cast<const std::string*>(value));
    case Type::stringList:
        writer.beginArray();
        for (const auto& item : *static_cast<const std::vector<std::string>*>(value))
            writer.string(item);
        return writer.endArray();
    case Type::uuid:
        return writer.uuid(*static_cast<const Uuid*>(value));
    case Type::date:
        if (m_dates == DateForm::secondsSince2001) {
            return writer.number(static_cast<const Date*>(value)->time_since_epoch().count());
        }
        return writer.iso8601(*static_cast<const Date*>(value));
    case Type::enumeration:
        return writer.plainString(field.names[field.getCase(value)]);
    case Type::record:
        return writeRecord(writer, *field.record, value);
    }
}

} // namespace nightjar::json
