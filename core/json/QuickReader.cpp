// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/json/QuickReader.h"

#include "core/base/Text.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>

namespace nightjar::json {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Whether a byte cannot simply be copied from a string: the quote, a backslash, a control character, or not
/// ASCII.
bool isSpecial(char c) {
    return c == '"' || c == '\\' || static_cast<unsigned char>(c) < 0x20 ||
           static_cast<unsigned char>(c) >= 0x80;
}

/// The first special byte, or `end`.
const char* findSpecial(const char* at, const char* end) {
    if constexpr (std::endian::native == std::endian::little) {
        constexpr std::uint64_t ones = 0x0101'0101'0101'0101;
        constexpr std::uint64_t highs = 0x80 * ones;
        const auto zeroBytes = [](std::uint64_t bytes) { return (bytes - ones) & ~bytes; };
        for (; end - at >= 8; at += 8) {
            std::uint64_t bytes = 0;
            std::memcpy(&bytes, at, sizeof bytes);
            // The lowest bit that is set is right; a borrow may set wrong ones above it.
            const std::uint64_t special = (zeroBytes(bytes ^ '"' * ones) | zeroBytes(bytes ^ '\\' * ones) |
                                           ((bytes - 0x20 * ones) & ~bytes) | bytes) &
                                          highs;
            if (special)
                return at + std::countr_zero(special) / 8;
        }
    }
    while (at != end && !isSpecial(*at))
        ++at;
    return at;
}

/// The character that the letter behind a backslash stands for; 0 for none.
char unescaped(char letter) {
    switch (letter) {
    case '"':
    case '\\':
    case '/':
        return letter;
    case 'b':
        return '\b';
    case 'f':
        return '\f';
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 't':
        return '\t';
    default:
        return 0;
    }
}

/// The digits of a number as one integer, as long as it surely fits.
struct Digits {
    std::uint64_t value = 0;
    std::ptrdiff_t count = 0;
    static constexpr std::ptrdiff_t most = 18;

    const char* read(const char* at, const char* end) {
        const char* start = at;
        for (; at != end && isDigit(*at); ++at)
            value = value * 10 + static_cast<std::uint64_t>(*at - '0');
        count += at - start;
        return at;
    }
};

/// Powers of ten that a double holds exactly.
constexpr std::array<double, 23> exactPowers{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                             1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                             1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr std::uint64_t exactIntegers = std::uint64_t{1} << 53;

} // namespace

bool QuickReader::readRecord(const Schema& schema, void* record) const {
    return endsAt(readObject(m_start, schema, record));
}

bool QuickReader::readRecords(const Schema& schema, void* (*append)(void* list), void* list) const {
    Place at = take(m_start, '[');
    if (!at)
        return false;
    if (const Place empty = take(at, ']'))
        return endsAt(empty);
    for (;;) {
        at = readObject(at, schema, append(list));
        if (!at)
            return false;
        if (const Place end = take(at, ']'))
            return endsAt(end);
        at = take(at, ',');
        if (!at)
            return false;
    }
}

inline QuickReader::Place QuickReader::skipSpace(Place at) const {
    while (at != m_end && (*at == ' ' || *at == '\n' || *at == '\r' || *at == '\t'))
        ++at;
    return at;
}

inline QuickReader::Place QuickReader::take(Place at, char expected) const {
    at = skipSpace(at);
    return at != m_end && *at == expected ? at + 1 : nullptr;
}

inline QuickReader::Place QuickReader::takeWord(Place at, std::string_view word) const {
    if (left(at) < word.size() || std::memcmp(at, word.data(), word.size()) != 0)
        return nullptr;
    return at + word.size();
}

QuickReader::Place QuickReader::readObject(Place at, const Schema& schema, void* record) const {
    at = take(at, '{');
    std::uint64_t seen = 0;
    std::size_t index = 0;
    for (;;) {
        if (!at || !(at = take(at, '"')))
            return nullptr;
        if (!(at = readKey(at, schema.fields, index)))
            return nullptr;
        if (seen >> index & 1)
            return nullptr;
        seen |= std::uint64_t{1} << index;
        if (!(at = take(at, ':')))
            return nullptr;
        at = skipSpace(at);
        if (at == m_end)
            return nullptr;

        const Field& field = schema.fields[index++];
        if (*at == 'n' && field.presence != Presence::required)
            at = takeWord(at, "null");
        else
            at = readValue(at, field, field.make(record));
        if (!at)
            return nullptr;

        at = skipSpace(at);
        if (at == m_end)
            return nullptr;
        if (*at == '}')
            return (schema.required & ~seen) == 0 ? at + 1 : nullptr;
        at = take(at, ',');
    }
}

/// Passes the key and its closing quote. Writers mostly keep one order, so the search starts at the `index`
/// given.
inline QuickReader::Place QuickReader::readKey(Place at, std::span<const Field> fields,
                                               std::size_t& index) const {
    const std::size_t start = index;
    for (index = start; index < fields.size(); ++index) {
        if (const Place behind = takeKey(at, fields[index]))
            return behind;
    }
    for (index = 0; index < start; ++index) {
        if (const Place behind = takeKey(at, fields[index]))
            return behind;
    }
    return nullptr;
}

inline QuickReader::Place QuickReader::takeKey(Place at, const Field& field) const {
    const std::size_t size = field.name.size();
    std::uint64_t bytes = 0;
    if (left(at) < std::max(size + 1, sizeof bytes))
        return nullptr;
    std::memcpy(&bytes, at, sizeof bytes);
    if ((bytes & field.nameBytes.firstMask) != field.nameBytes.first || at[size] != '"')
        return nullptr;
    if (size > sizeof bytes) {
        std::memcpy(&bytes, at + size - sizeof bytes, sizeof bytes);
        if (bytes != field.nameBytes.last)
            return nullptr;
        if (size > 2 * sizeof bytes && std::memcmp(at, field.name.data(), size) != 0)
            return nullptr;
    }
    return at + size + 1;
}

inline QuickReader::Place QuickReader::readValue(Place at, const Field& field, void* out) const {
    switch (field.type) {
    case Type::boolean:
        return readBool(at, out);
    case Type::int32:
        return readInteger<std::int32_t>(at, out);
    case Type::uint32:
        return readInteger<std::uint32_t>(at, out);
    case Type::int64:
        return readInteger<std::int64_t>(at, out);
    case Type::float32:
        return readFloat(at, out);
    case Type::float64:
        return readDouble(at, *static_cast<double*>(out));
    case Type::string:
        return readString(at, *static_cast<std::string*>(out));
    case Type::stringList:
        return readStringList(at, *static_cast<std::vector<std::string>*>(out));
    case Type::uuid:
        return readUuid(at, *static_cast<Uuid*>(out));
    case Type::date:
        return readDate(at, *static_cast<Date*>(out));
    case Type::enumeration:
        return readCase(at, field, out);
    case Type::record:
        return readObject(at, *field.record, out);
    }
    return nullptr;
}

QuickReader::Place QuickReader::readBool(Place at, void* out) const {
    *static_cast<bool*>(out) = *at == 't';
    return takeWord(at, *at == 't' ? "true" : "false");
}

QuickReader::Place QuickReader::readString(Place at, std::string& out) const {
    if (*at != '"')
        return nullptr;
    Place start = ++at;
    bool ascii = true;
    out.clear();
    for (;;) {
        at = findSpecial(at, m_end);
        if (at == m_end || static_cast<unsigned char>(*at) < 0x20)
            return nullptr;
        if (static_cast<unsigned char>(*at) >= 0x80) {
            ascii = false;
            ++at;
            continue;
        }
        out.append(start, at);
        if (*at++ == '"')
            return ascii || isValidUtf8(out) ? at : nullptr;
        const char meaning = at == m_end ? '\0' : unescaped(*at++);
        if (meaning == 0)
            return nullptr;
        out += meaning;
        start = at;
    }
}

/// A string of ASCII without escapes; it points into the text.
inline QuickReader::Place QuickReader::readPlainString(Place at, std::string_view& out) const {
    if (*at != '"')
        return nullptr;
    const Place end = findSpecial(at + 1, m_end);
    if (end == m_end || *end != '"')
        return nullptr;
    out = {at + 1, end};
    return end + 1;
}

QuickReader::Place QuickReader::readStringList(Place at, std::vector<std::string>& out) const {
    out.clear();
    if (!(at = take(at, '[')))
        return nullptr;
    if (const Place end = take(at, ']'))
        return end;
    for (;;) {
        at = skipSpace(at);
        if (at == m_end || !(at = readString(at, out.emplace_back())))
            return nullptr;
        if (const Place end = take(at, ']'))
            return end;
        if (!(at = take(at, ',')))
            return nullptr;
    }
}

template <class Integer>
inline QuickReader::Place QuickReader::readInteger(Place at, void* out) const {
    const bool negative = *at == '-';
    const Place first = at + (negative ? 1 : 0);
    Digits digits;
    at = digits.read(first, m_end);
    if (digits.count == 0 || digits.count > Digits::most || (*first == '0' && digits.count > 1))
        return nullptr;
    if (at == m_end || *at == '.' || *at == 'e' || *at == 'E')
        return nullptr;
    const auto number =
        negative ? -static_cast<std::int64_t>(digits.value) : static_cast<std::int64_t>(digits.value);
    if (!std::in_range<Integer>(number))
        return nullptr;
    *static_cast<Integer*>(out) = static_cast<Integer>(number);
    return at;
}

inline QuickReader::Place QuickReader::readFloat(Place at, void* out) const {
    double number = 0;
    at = readDouble(at, number);
    const auto narrowed = static_cast<float>(number);
    *static_cast<float*>(out) = narrowed;
    return std::isfinite(narrowed) ? at : nullptr;
}

/// A number without an exponent. With few enough digits it is the quotient of two integers that a double
/// holds exactly, rounded once, which is the right value; else the standard library reads it.
inline QuickReader::Place QuickReader::readDouble(Place at, double& out) const {
    const bool negative = *at == '-';
    const Place first = at + (negative ? 1 : 0);
    Digits digits;
    Place end = digits.read(first, m_end);
    if (digits.count == 0 || (*first == '0' && digits.count > 1))
        return nullptr;
    std::ptrdiff_t decimals = 0;
    if (end != m_end && *end == '.') {
        decimals = -digits.count;
        end = digits.read(end + 1, m_end);
        decimals += digits.count;
        if (decimals == 0)
            return nullptr;
    } else if (negative && digits.value == 0) {
        return nullptr; // The full parser reads -0 as an integer, which has no sign.
    }
    if (end == m_end || *end == 'e' || *end == 'E')
        return nullptr;

    if (digits.count <= Digits::most && digits.value <= exactIntegers) {
        const double number =
            static_cast<double>(digits.value) / exactPowers[static_cast<std::size_t>(decimals)];
        out = negative ? -number : number;
        return end;
    }
    // The full parser refuses an integer of more than 64 bits.
    if (decimals == 0 || digits.count > 40)
        return nullptr;
    const auto read = std::from_chars(at, end, out);
    return read.ec == std::errc{} && read.ptr == end ? end : nullptr;
}

inline QuickReader::Place QuickReader::readCase(Place at, const Field& field, void* out) const {
    std::string_view text;
    if (!(at = readPlainString(at, text)))
        return nullptr;
    for (std::size_t i = 0; i < field.names.size(); ++i) {
        if (field.names[i] != text)
            continue;
        field.setCase(out, i);
        return at;
    }
    return nullptr;
}

inline QuickReader::Place QuickReader::readUuid(Place at, Uuid& out) const {
    constexpr std::size_t length = Uuid::textLength;
    if (left(at) < length + 2 || at[0] != '"' || at[length + 1] != '"')
        return nullptr;
    const auto uuid = Uuid::fromText({at + 1, length});
    if (!uuid)
        return nullptr;
    out = *uuid;
    return at + length + 2;
}

inline QuickReader::Place QuickReader::readDate(Place at, Date& out) const {
    if (m_dates == DateForm::secondsSince2001) {
        double seconds = 0;
        at = readDouble(at, seconds);
        out = Date{Seconds{seconds}};
        return at;
    }
    std::string_view text;
    if (!(at = readPlainString(at, text)))
        return nullptr;
    const auto date = dateFromIso8601(text);
    if (!date)
        return nullptr;
    out = *date;
    return at;
}

} // namespace nightjar::json
