// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/json/Schema.h"

#include <string_view>

namespace nightjar::json {

/// Reads records straight from the text in one pass, which takes about as long as only parsing it into a
/// document. It knows JSON as it is usually written: only known keys, each once, and strings without \u
/// escapes. Whatever it takes, the full parser reads to the same values; for everything else it gives up,
/// which says nothing about the text.
class QuickReader {
public:
    QuickReader(std::string_view text, DateForm dates)
        : m_start(text.data()), m_end(text.data() + text.size()), m_dates(dates) {}

    /// Whether the text is one record. When not, the record may be half filled.
    [[nodiscard]] bool readRecord(const Schema& schema, void* record) const;
    /// Whether the text is a list of records; `append` gives room for one more.
    [[nodiscard]] bool readRecords(const Schema& schema, void* (*append)(void* list), void* list) const;

private:
    // Each takes the place where it begins and gives the place behind, or null where the reader gives up.
    using Place = const char*;
    [[nodiscard]] Place skipSpace(Place at) const;
    [[nodiscard]] Place take(Place at, char expected) const;
    [[nodiscard]] Place takeWord(Place at, std::string_view word) const;
    [[nodiscard]] Place takeKey(Place at, const Field& field) const;
    [[nodiscard]] Place readKey(Place at, std::span<const Field> fields, std::size_t& index) const;
    [[nodiscard]] Place readObject(Place at, const Schema& schema, void* record) const;
    [[nodiscard]] Place readValue(Place at, const Field& field, void* out) const;
    [[nodiscard]] Place readBool(Place at, void* out) const;
    [[nodiscard]] Place readString(Place at, std::string& out) const;
    [[nodiscard]] Place readPlainString(Place at, std::string_view& out) const;
    [[nodiscard]] Place readStringList(Place at, std::vector<std::string>& out) const;
    template <class Integer>
    [[nodiscard]] Place readInteger(Place at, void* out) const;
    [[nodiscard]] Place readFloat(Place at, void* out) const;
    [[nodiscard]] Place readDouble(Place at, double& out) const;
    [[nodiscard]] Place readCase(Place at, const Field& field, void* out) const;
    [[nodiscard]] Place readUuid(Place at, Uuid& out) const;
    [[nodiscard]] Place readDate(Place at, Date& out) const;

    [[nodiscard]] bool endsAt(Place at) const { return at && skipSpace(at) == m_end; }
    [[nodiscard]] std::size_t left(Place at) const { return static_cast<std::size_t>(m_end - at); }

    const Place m_start;
    const Place m_end;
    const DateForm m_dates;
};

} // namespace nightjar::json
