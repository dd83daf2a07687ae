// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/base/Text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>

namespace nightjar {
namespace {

struct Decoded {
    char32_t codePoint;
    std::size_t length;
};

std::size_t sequenceLength(unsigned char lead) {
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead < 0xE0)
        return 2;
    if (lead >= 0xE0 && lead < 0xF0)
        return 3;
    if (lead >= 0xF0 && lead < 0xF5)
        return 4;
    return 0;
}

/// The code point at `at`; absent where the bytes are ill-formed (RFC 3629).
std::optional<Decoded> decodeAt(std::string_view text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const std::size_t length = sequenceLength(lead);
    if (length == 0 || at + length > text.size())
        return std::nullopt;
    if (length == 1)
        return Decoded{lead, 1};

    char32_t value = lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[at + i]);
        if ((next & 0xC0) != 0x80)
            return std::nullopt;
        value = value << 6 | (next & 0x3Fu);
    }
    constexpr std::array<char32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
    if (value < smallest[length] || value > 0x10FFFF || surrogate)
        return std::nullopt;
    return Decoded{value, length};
}

bool isEightAscii(std::string_view text, std::size_t at) {
    std::uint64_t bytes = 0;
    if (text.size() - at < sizeof bytes)
        return false;
    std::memcpy(&bytes, text.data() + at, sizeof bytes);
    return (bytes & 0x8080'8080'8080'8080) == 0;
}

bool isWhiteSpace(char32_t c) {
    return c == 0x20 || (c >= 0x09 && c <= 0x0D) || c == 0x85 || c == 0xA0 || c == 0x1680 ||
           (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F ||
           c == 0x3000;
}

} // namespace

std::string_view trimmed(std::string_view text) {
    while (!text.empty()) {
        const auto first = decodeAt(text, 0);
        if (!first || !isWhiteSpace(first->codePoint))
            break;
        text.remove_prefix(first->length);
    }
    while (!text.empty()) {
        std::size_t start = text.size() - 1;
        while (start > 0 && (static_cast<unsigned char>(text[start]) & 0xC0) == 0x80)
            --start;
        const auto last = decodeAt(text, start);
        if (!last || start + last->length != text.size() || !isWhiteSpace(last->codePoint))
            break;
        text.remove_suffix(last->length);
    }
    return text;
}

bool isValidUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        if (isEightAscii(text, at)) {
            at += 8;
            continue;
        }
        const auto decoded = decodeAt(text, at);
        if (!decoded)
            return false;
        at += decoded->length;
    }
    return true;
}

std::string withReplacedInvalidUtf8(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        if (const auto decoded = decodeAt(text, at)) {
            result.append(text, at, decoded->length);
            at += decoded->length;
        } else {
            result += "\xEF\xBF\xBD";
            ++at;
        }
    }
    return result;
}

std::string shortestText(double value) {
    // Left to itself the shortest text of 1,700,000,000 is "1.7e+09"; plain digits as long as each of them
    // counts.
    const double magnitude = std::abs(value);
    const bool plain = magnitude == 0 || (magnitude >= 1e-4 && magnitude <= 0x1p53);
    const auto form = plain ? std::chars_format::fixed : std::chars_format::scientific;
    std::array<char, 40> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, form).ptr;
    std::string text(buffer.data(), end);
    if (text.find_first_of(".einf") == std::string::npos)
        text += ".0";
    return text;
}

} // namespace nightjar
