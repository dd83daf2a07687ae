// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/json/QuickReader.h"
#include "core/json/Schema.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace nightjar::json {

/// Reads JSON text into records, strictly: text that is not JSON, a missing required field, a wrong type, a
/// number outside its field's range (1.0 is no integer), invalid UTF-8, a lone surrogate or nesting deeper
/// than 64 fails the whole record. Unknown keys are ignored; of a repeated key the first counts. Never
/// throws. One decoder serves one thread at a time and keeps its buffers from one text to the next.
class Decoder {
public:
    explicit Decoder(DateForm dates);
    ~Decoder();
    Decoder(Decoder&&) noexcept;
    Decoder& operator=(Decoder&&) noexcept;

    template <class Record>
    [[nodiscard]] std::optional<Record> decode(std::string_view text) {
        std::optional<Record> record(std::in_place);
        if (QuickReader(text, m_dates).readRecord(schemaOf<Record>(), &*record))
            return record;
        return decodeFully<Record>(text);
    }

    /// An array of records; one bad element fails the whole.
    template <class Record>
    [[nodiscard]] std::optional<std::vector<Record>> decodeList(std::string_view text) {
        std::optional<std::vector<Record>> records(std::in_place);
        if (QuickReader(text, m_dates).readRecords(schemaOf<Record>(), appendTo<Record>, &*records))
            return records;
        return decodeListFully<Record>(text);
    }

    /// What the two above do with a text that is not in the usual form; the result is always the same.
    template <class Record>
    [[nodiscard]] std::optional<Record> decodeFully(std::string_view text) {
        std::optional<Record> record(std::in_place);
        if (!decodeRecord(text, schemaOf<Record>(), &*record))
            record.reset();
        return record;
    }
    template <class Record>
    [[nodiscard]] std::optional<std::vector<Record>> decodeListFully(std::string_view text) {
        std::optional<std::vector<Record>> records(std::in_place);
        if (!decodeRecords(text, schemaOf<Record>(), appendTo<Record>, &*records))
            records.reset();
        return records;
    }

private:
    struct Parser;

    template <class Record>
    static void* appendTo(void* list) {
        return &static_cast<std::vector<Record>*>(list)->emplace_back();
    }

    [[nodiscard]] bool decodeRecord(std::string_view text, const Schema& schema, void* record);
    [[nodiscard]] bool decodeRecords(std::string_view text, const Schema& schema, void* (*append)(void*),
                                     void* list);

    DateForm m_dates;
    std::unique_ptr<Parser> m_parser;
};

} // namespace nightjar::json
