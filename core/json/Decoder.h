// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/json/Schema.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace nightjar::json {

enum class DateForm {
    iso8601,         ///< "2025-05-01T12:34:56Z"
    secondsSince2001 ///< a number: seconds since 2001-01-01 00:00:00 UTC
};

/// Reads JSON text into records, strictly: text that is not JSON, a missing required field, a wrong type, a number
/// outside its field's range (1.0 is no integer), invalid UTF-8, a lone surrogate or nesting deeper than 64 fails the
/// whole record. Unknown keys are ignored; of a repeated key the first counts. Never throws.
/// One decoder serves one thread at a time and keeps its buffers from one text to the next.
class Decoder {
public:
    explicit Decoder(DateForm dates);
    ~Decoder();
    Decoder(Decoder&&) noexcept;
    Decoder& operator=(Decoder&&) noexcept;

    template <class Record>
    [[nodiscard]] std::optional<Record> decode(std::string_view text) {
        std::optional<Record> record(std::in_place);
        if (!decodeRecord(text, schemaOf<Record>(), &*record)) record.reset();
        return record;
    }

    /// An array of records; one bad element fails the whole.
    template <class Record>
    [[nodiscard]] std::optional<std::vector<Record>> decodeList(std::string_view text) {
        std::vector<Record> records;
        const auto append = [](void* list) -> void* {
            return &static_cast<std::vector<Record>*>(list)->emplace_back();
        };
        if (!decodeRecords(text, schemaOf<Record>(), append, &records)) return std::nullopt;
        return records;
    }

private:
    struct Parser;

    [[nodiscard]] bool decodeRecord(std::string_view text, const Schema& schema, void* record);
    [[nodiscard]] bool decodeRecords(std::string_view text, const Schema& schema, void* (*append)(void*), void* list);

    DateForm m_dates;
    std::unique_ptr<Parser> m_parser;
};

} // namespace nightjar::json
