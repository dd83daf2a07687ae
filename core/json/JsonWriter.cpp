// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/json/JsonWriter.h"

#include "core/base/Text.h"

#include <array>
#include <charconv>
#include <cmath>

namespace nightjar::json {
namespace {

/// The letter after the backslash for each byte that needs one; 'u' stands for \u00XX, 0 for none.
constexpr std::array<char, 256> makeEscapes() {
    std::array<char, 256> escapes{};
    for (std::size_t i = 0; i < 0x20; ++i)
        escapes[i] = 'u';
    escapes['\b'] = 'b';
    escapes['\f'] = 'f';
    escapes['\n'] = 'n';
    escapes['\r'] = 'r';
    escapes['\t'] = 't';
    escapes['"'] = '"';
    escapes['\\'] = '\\';
    escapes['/'] = '/';
    return escapes;
}
constexpr auto escapes = makeEscapes();

template <class Number>
void appendNumber(std::string& out, Number value) {
    std::array<char, 40> buffer;
    const auto end = buffer.data() + buffer.size();
    if constexpr (std::is_floating_point_v<Number>) {
        // Readers, ours too, take -0 for an integer without a sign, and refuse an integer of more than 64
        // bits.
        if (value == 0 && std::signbit(value)) {
            out += "-0.0";
            return;
        }
        if (std::abs(value) >= Number(1e17)) {
            out.append(buffer.data(),
                       std::to_chars(buffer.data(), end, value, std::chars_format::scientific).ptr);
            return;
        }
    }
    out.append(buffer.data(), std::to_chars(buffer.data(), end, value).ptr);
}

} // namespace

void JsonWriter::begin(char bracket) {
    beforeValue();
    m_out += bracket;
    ++m_depth;
    m_first = true;
}

void JsonWriter::end(char bracket) {
    --m_depth;
    if (!m_first)
        newLine();
    m_out += bracket;
    m_first = false;
}

void JsonWriter::newLine() {
    if (m_layout == Layout::compact)
        return;
    m_out += '\n';
    m_out.append(m_depth * 2, ' ');
}

void JsonWriter::beforeValue() {
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (m_depth == 0)
        return;
    if (!m_first)
        m_out += ',';
    m_first = false;
    newLine();
}

void JsonWriter::key(std::string_view name) {
    beforeValue();
    quoted(name);
    afterKey();
}

void JsonWriter::plainKey(std::string_view name) {
    plainString(name);
    afterKey();
}

void JsonWriter::afterKey() {
    m_out += m_layout == Layout::pretty ? " : " : ":";
    m_afterKey = true;
}

void JsonWriter::raw(std::string_view json) {
    beforeValue();
    m_out += json;
}

void JsonWriter::integer(std::int64_t value) {
    beforeValue();
    appendNumber(m_out, value);
}

void JsonWriter::number(float value) {
    if (!std::isfinite(value))
        return cannotWrite();
    beforeValue();
    appendNumber(m_out, value);
}

void JsonWriter::number(double value) {
    if (!std::isfinite(value))
        return cannotWrite();
    beforeValue();
    appendNumber(m_out, value);
}

void JsonWriter::cannotWrite() {
    m_failed = true;
    null();
}

void JsonWriter::string(std::string_view value) {
    beforeValue();
    if (isValidUtf8(value))
        quoted(value);
    else
        quoted(withReplacedInvalidUtf8(value));
}

void JsonWriter::plainString(std::string_view value) {
    beforeValue();
    m_out += '"';
    m_out += value;
    m_out += '"';
}

void JsonWriter::uuid(const Uuid& value) {
    std::array<char, Uuid::textLength> text;
    value.write(text);
    plainString({text.data(), text.size()});
}

void JsonWriter::iso8601(Date value) {
    std::array<char, iso8601Length> text;
    if (!writeIso8601(value, text))
        return cannotWrite();
    plainString({text.data(), text.size()});
}

void JsonWriter::quoted(std::string_view text) {
    m_out += '"';
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const char escape = escapes[byte];
        if (escape == 0)
            continue;
        m_out.append(text, start, i - start);
        start = i + 1;
        m_out += '\\';
        m_out += escape;
        if (escape == 'u') {
            constexpr std::string_view digits = "0123456789abcdef";
            m_out += "00";
            m_out += digits[byte >> 4];
            m_out += digits[byte & 15];
        }
    }
    m_out.append(text, start);
    m_out += '"';
}

} // namespace nightjar::json
