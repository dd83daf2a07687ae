// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Date.h"
#include "core/base/Uuid.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace nightjar::json {

enum class Layout {
    compact, ///< one line, no spaces
    pretty   ///< one value a line, two spaces a level, `"key" : value`
};

/// Appends JSON to a text. Slashes are escaped, numbers are the shortest that read back the same, ill-formed
/// UTF-8 becomes U+FFFD. A number that is not finite cannot be written: it makes the writer fail, see
/// `failed()`.
class JsonWriter {
public:
    explicit JsonWriter(std::string& out, Layout layout = Layout::compact) : m_out(out), m_layout(layout) {}

    void beginObject() { begin('{'); }
    void endObject() { end('}'); }
    void beginArray() { begin('['); }
    void endArray() { end(']'); }
    void key(std::string_view name);
    /// A key of ours: ASCII that needs no escape.
    void plainKey(std::string_view name);

    void null() { raw("null"); }
    void boolean(bool value) { raw(value ? "true" : "false"); }
    void integer(std::int64_t value);
    void number(float value);
    void number(double value);
    void string(std::string_view value);
    /// A string of ours: ASCII that needs no escape.
    void plainString(std::string_view value);
    void uuid(const Uuid& value);
    /// A date as text; one outside the years 1 to 9999 makes the writer fail.
    void iso8601(Date value);
    /// A value that is JSON already.
    void raw(std::string_view json);

    [[nodiscard]] bool failed() const { return m_failed; }

private:
    void begin(char bracket);
    void end(char bracket);
    void beforeValue();
    void newLine();
    void afterKey();
    void cannotWrite();
    void quoted(std::string_view text);

    std::string& m_out;
    Layout m_layout;
    std::size_t m_depth = 0;
    bool m_first = true; ///< nothing stands in the innermost bracket yet
    bool m_afterKey = false;
    bool m_failed = false;
};

} // namespace nightjar::json
