// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/json/Schema.h"

#include <string>
#include <string_view>
#include <vector>

namespace nightjar::json {

/// Tells whether a text is, byte for byte, a list of records as the encoder writes it (pretty, sorted keys,
/// ISO-8601 dates; a number may have more digits than it needs), and where each record stands. Such a text
/// need not be decoded and encoded again to add a record to it. Knows records of plain fields: no float32,
/// enumeration, list or nested record.
class LayoutScanner {
public:
    LayoutScanner(std::string_view text, const Schema& schema);

    /// Passes the next record; false behind the last one, and where the text is not in our layout.
    [[nodiscard]] bool next();
    /// Whether `next` ended because the text did.
    [[nodiscard]] bool isComplete() const { return m_complete; }

    /// Where the record just passed begins, with the line feed before it, and ends, before the comma.
    [[nodiscard]] std::size_t begin() const { return m_begin; }
    [[nodiscard]] std::size_t end() const { return m_end; }
    /// The value that the record just passed has in an integer field, named by its place in the schema.
    [[nodiscard]] std::int64_t integer(std::size_t field) const { return m_integers[field]; }

private:
    bool take(std::string_view expected);
    bool take(char expected);
    [[nodiscard]] std::size_t left() const { return m_text.size() - m_at; }
    bool passRecord();
    bool passValue(std::size_t field);
    bool passInteger(std::size_t field);
    bool passDouble();
    bool passString();
    bool passEscape();
    bool passUuid();
    bool passDate();

    std::string_view m_text;
    const Schema& m_schema;
    std::vector<std::string> m_keys; ///< in sorted order, as they stand between two values
    std::vector<std::int64_t> m_integers;
    std::size_t m_at = 0;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
    bool m_complete = false;
};

} // namespace nightjar::json
