// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/base/Uuid.h"

#include <random>

namespace nightjar {
namespace {

constexpr std::array<std::int8_t, 256> makeHexValues() {
    std::array<std::int8_t, 256> values{};
    values.fill(-1);
    for (int i = 0; i < 10; ++i)
        values[static_cast<std::size_t>('0' + i)] = static_cast<std::int8_t>(i);
    for (int i = 0; i < 6; ++i) {
        values[static_cast<std::size_t>('a' + i)] = static_cast<std::int8_t>(10 + i);
        values[static_cast<std::size_t>('A' + i)] = static_cast<std::int8_t>(10 + i);
    }
    return values;
}
constexpr auto hexValues = makeHexValues();

/// Where the two digits of each byte begin; hyphens stand between.
constexpr std::array<std::size_t, 16> digitsAt{0, 2, 4, 6, 9, 11, 14, 16, 19, 21, 24, 26, 28, 30, 32, 34};
constexpr std::array<std::size_t, 4> hyphensAt{8, 13, 18, 23};

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
    if (text.size() != textLength)
        return std::nullopt;
    for (const auto at : hyphensAt) {
        if (text[at] != '-')
            return std::nullopt;
    }
    Uuid uuid;
    int seen = 0;
    for (std::size_t i = 0; i < uuid.bytes.size(); ++i) {
        const int high = hexValues[static_cast<unsigned char>(text[digitsAt[i]])];
        const int low = hexValues[static_cast<unsigned char>(text[digitsAt[i] + 1])];
        seen |= high | low; // negative as soon as one character is no hexadecimal digit
        uuid.bytes[i] = static_cast<std::uint8_t>((high & 15) << 4 | (low & 15));
    }
    if (seen < 0)
        return std::nullopt;
    return uuid;
}

std::string Uuid::text() const {
    std::array<char, textLength> text;
    write(text);
    return {text.data(), text.size()};
}

void Uuid::write(std::span<char, textLength> text) const {
    constexpr std::string_view digits = "0123456789ABCDEF";
    for (const auto at : hyphensAt)
        text[at] = '-';
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        text[digitsAt[i]] = digits[bytes[i] >> 4];
        text[digitsAt[i] + 1] = digits[bytes[i] & 15];
    }
}

} // namespace nightjar
