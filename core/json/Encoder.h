// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/json/Decoder.h"
#include "core/json/JsonWriter.h"
#include "core/json/Schema.h"

#include <expected>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nightjar::json {

enum class KeyOrder { asDeclared, sorted };

/// What is said of a record that JSON cannot hold: a number that is not finite, a date outside the years 1 to
/// 9999.
inline constexpr std::string_view unencodable =
    "The data couldn’t be written because it isn’t in the correct format.";

/// Writes records as JSON; absent fields are left out.
class Encoder {
public:
    explicit Encoder(DateForm dates, Layout layout = Layout::compact, KeyOrder order = KeyOrder::asDeclared)
        : m_dates(dates), m_layout(layout), m_order(order) {}

    template <class Record>
    [[nodiscard]] std::expected<std::string, std::string> encode(const Record& record) const {
        std::string text;
        JsonWriter writer(text, m_layout);
        write(writer, record);
        if (writer.failed())
            return std::unexpected(std::string(unencodable));
        return text;
    }

    template <class Record>
    [[nodiscard]] std::expected<std::string, std::string> encodeList(std::span<const Record> records) const {
        std::string text;
        text.reserve(records.size() * 256 + 16);
        JsonWriter writer(text, m_layout);
        writer.beginArray();
        for (const Record& record : records)
            write(writer, record);
        writer.endArray();
        if (writer.failed())
            return std::unexpected(std::string(unencodable));
        return text;
    }

    template <class Record>
    void write(JsonWriter& writer, const Record& record) const {
        writeRecord(writer, schemaOf<Record>(), &record);
    }

private:
    void writeRecord(JsonWriter& writer, const Schema& schema, const void* record) const;
    void writeField(JsonWriter& writer, const Field& field, const void* value) const;

    DateForm m_dates;
    Layout m_layout;
    KeyOrder m_order;
};

} // namespace nightjar::json
