// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/json/LayoutScanner.h"

#include "core/base/Text.h"
#include "core/json/JsonWriter.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace nightjar::json {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool fits(Type type, std::int64_t number) {
    return type == Type::int64 || (type == Type::int32 && std::in_range<std::int32_t>(number)) ||
           (type == Type::uint32 && std::in_range<std::uint32_t>(number));
}

/// Whether the writer would write the number with these same characters.
bool isShortest(std::string_view number) {
    double value = 0;
    const auto read = std::from_chars(number.data(), number.data() + number.size(), value);
    if (read.ec != std::errc{} || read.ptr != number.data() + number.size() || !std::isfinite(value))
        return false;
    std::string written;
    JsonWriter(written).number(value);
    return written == number;
}

} // namespace

LayoutScanner::LayoutScanner(std::string_view text, const Schema& schema)
    : m_text(text), m_schema(schema), m_integers(schema.fields.size()) {
    for (std::size_t i = 0; i < schema.fields.size(); ++i) {
        const auto& name = schema.fields[schema.sortedOrder[i]].name;
        m_keys.push_back(",\n    \"" + std::string(name) + "\" : ");
    }
    if (text == "[]")
        m_complete = true;
}

inline bool LayoutScanner::take(std::string_view expected) {
    if (left() < expected.size() || std::memcmp(m_text.data() + m_at, expected.data(), expected.size()) != 0)
        return false;
    m_at += expected.size();
    return true;
}

inline bool LayoutScanner::take(char expected) {
    if (left() == 0 || m_text[m_at] != expected)
        return false;
    ++m_at;
    return true;
}

bool LayoutScanner::next() {
    if (m_complete)
        return false;
    if (m_at != 0 && take("\n]")) {
        m_complete = m_at == m_text.size();
        return false;
    }
    if (!take(m_at == 0 ? '[' : ','))
        return false;
    m_begin = m_at;
    if (!take("\n  {") || !passRecord() || !take("\n  }"))
        return false;
    m_end = m_at;
    return true;
}

bool LayoutScanner::passRecord() {
    std::size_t comma = 1; // the first key has none before it
    for (std::size_t i = 0; i < m_keys.size(); ++i) {
        const std::size_t field = m_schema.sortedOrder[i];
        if (take(std::string_view(m_keys[i]).substr(comma))) {
            if (!passValue(field))
                return false;
            comma = 0;
        } else if (m_schema.fields[field].presence != Presence::optional) {
            return false;
        }
    }
    return true;
}

bool LayoutScanner::passValue(std::size_t field) {
    switch (m_schema.fields[field].type) {
    case Type::boolean:
        return take("true") || take("false");
    case Type::int32:
    case Type::uint32:
    case Type::int64:
        return passInteger(field);
    case Type::float64:
        return passDouble();
    case Type::string:
        return passString();
    case Type::uuid:
        return passUuid();
    case Type::date:
        return passDate();
    default:
        return false;
    }
}

bool LayoutScanner::passInteger(std::size_t field) {
    const char* start = m_text.data() + m_at;
    std::int64_t number = 0;
    const auto read = std::from_chars(start, m_text.data() + m_text.size(), number);
    if (read.ec != std::errc{} || !fits(m_schema.fields[field].type, number))
        return false;
    const std::string_view digits(start + (*start == '-'), read.ptr);
    if (digits.front() == '0' && (digits.size() > 1 || *start == '-'))
        return false;
    m_integers[field] = number;
    m_at += static_cast<std::size_t>(read.ptr - start);
    return true;
}

/// A plain decimal number is taken with the digits that it has: whether fewer would do is costly to tell and
/// changes nothing. Any other is written again to see whether it comes out the same.
bool LayoutScanner::passDouble() {
    constexpr std::size_t mostDigits = std::numeric_limits<double>::max_digits10;
    const std::size_t start = m_at;
    const auto digits = [this] {
        const std::size_t first = m_at;
        while (left() > 0 && isDigit(m_text[m_at]))
            ++m_at;
        return m_at - first;
    };
    take('-');
    const bool startsWithZero = left() > 0 && m_text[m_at] == '0';
    const std::size_t whole = digits();
    const bool hasPoint = take('.');
    const std::size_t fraction = hasPoint ? digits() : 0;
    const bool isPlain = whole > 0 && (whole == 1 || !startsWithZero) && hasPoint == (fraction > 0) &&
                         whole + fraction <= mostDigits && left() > 0 && m_text[m_at] != 'e';
    if (isPlain)
        return true;
    while (left() > 0 && (isDigit(m_text[m_at]) || std::string_view("e+-").contains(m_text[m_at])))
        ++m_at;
    return isShortest(m_text.substr(start, m_at - start));
}

bool LayoutScanner::passString() {
    if (!take('"'))
        return false;
    const std::size_t start = m_at;
    bool ascii = true;
    while (m_at < m_text.size()) {
        const auto byte = static_cast<unsigned char>(m_text[m_at++]);
        if (byte == '"')
            return ascii || isValidUtf8(m_text.substr(start, m_at - start));
        if (byte < 0x20 || byte == '/' || (byte == '\\' && !passEscape()))
            return false;
        ascii = ascii && byte < 0x80;
    }
    return false;
}

/// What follows a backslash. Control characters that have no letter are written as \u00 and two digits.
bool LayoutScanner::passEscape() {
    if (m_at == m_text.size())
        return false;
    const char letter = m_text[m_at++];
    if (letter != 'u')
        return std::string_view("\"\\/bfnrt").contains(letter);
    if (!take("00") || left() < 2)
        return false;
    const char high = m_text[m_at++];
    const char low = m_text[m_at++];
    const bool hasLetter = high == '0' && std::string_view("89acd").contains(low);
    return (high == '0' || high == '1') && std::string_view("0123456789abcdef").contains(low) && !hasLetter;
}

bool LayoutScanner::passUuid() {
    constexpr std::size_t length = Uuid::textLength;
    if (left() < length + 2 || !take('"'))
        return false;
    const std::string_view text = m_text.substr(m_at, length);
    unsigned lowerCase = 0; // without a branch: the letters come at random
    for (const char c : text)
        lowerCase |= static_cast<unsigned>(c >= 'a');
    m_at += length;
    return lowerCase == 0 && Uuid::fromText(text) && take('"');
}

bool LayoutScanner::passDate() {
    if (left() < iso8601Length + 2)
        return false;
    const std::string_view text = m_text.substr(m_at + 1, iso8601Length);
    if (m_text[m_at] != '"' || m_text[m_at + iso8601Length + 1] != '"' || !dateFromIso8601(text))
        return false;
    m_at += iso8601Length + 2;
    return true;
}

} // namespace nightjar::json
