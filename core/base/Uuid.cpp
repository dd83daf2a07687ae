// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/base/Uuid.h"

#include <random>

namespace nightjar {
namespace {

constexpr std::array<std::int8_t, 256> makeHexValues() {
    std::array<std::int8_t, 256> values{};
    values.fill(-1);
    for (int i = 0; i < 10; ++i) values[static_cast<std::size_t>('0' + i)] = static_cast<std::int8_t>(i);
    for (int i = 0; i < 6; ++i) {
        values[static_cast<std::size_t>('a' + i)] = static_cast<std::int8_t>(10 + i);
        values[static_cast<std::size_t>('A' + i)] = static_cast<std::int8_t>(10 + i);
    }
    return values;
}
constexpr auto hexValues = makeHexValues();

constexpr bool hyphenBefore(std::size_t byte) {
    return byte == 4 || byte == 6 || byte == 8 || byte == 10;
}

} // namespace

Uuid Uuid::random() {
    thread_local std::random_device source;
    Uuid uuid;
    for (std::size_t i = 0; i < 16; i += 4) {
        const std::uint32_t word = source();
        std::memcpy(uuid.bytes.data() + i, &word, sizeof word);
    }
    uuid.bytes[6] = static_cast<std::uint8_t>((uuid.bytes[6] & 0x0F) | 0x40); // version 4, RFC 9562
    uuid.bytes[8] = static_cast<std::uint8_t>((uuid.bytes[8] & 0x3F) | 0x80);
    return uuid;
}

std::optional<Uuid> Uuid::fromText(std::string_view text) {
    if (text.size() != 36) return std::nullopt;
    Uuid uuid;
    std::size_t at = 0;
    int seen = 0;
    for (std::size_t i = 0; i < 16; ++i) {
        if (hyphenBefore(i) && text[at++] != '-') return std::nullopt;
        const int high = hexValues[static_cast<unsigned char>(text[at++])];
        const int low = hexValues[static_cast<unsigned char>(text[at++])];
        seen |= high | low; // negative as soon as one character is no hexadecimal digit
        uuid.bytes[i] = static_cast<std::uint8_t>((high & 15) << 4 | (low & 15));
    }
    if (seen < 0) return std::nullopt;
    return uuid;
}

std::string Uuid::text() const {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(36);
    for (std::size_t i = 0; i < 16; ++i) {
        if (hyphenBefore(i)) text += '-';
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 15];
    }
    return text;
}

} // namespace nightjar
