// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace nightjar {

/// A 128-bit identifier, compared by value.
struct Uuid {
    static constexpr std::size_t textLength = 36;

    std::array<std::uint8_t, 16> bytes{};

    /// Version 4 from the system's random source. Any thread.
    [[nodiscard]] static Uuid random();
    /// Canonical 8-4-4-4-12 hexadecimal form in either case; anything else is absent.
    [[nodiscard]] static std::optional<Uuid> fromText(std::string_view text);
    /// Canonical form in upper case.
    [[nodiscard]] std::string text() const;
    /// `text()` without an allocation.
    void write(std::span<char, textLength> text) const;

    bool operator==(const Uuid&) const = default;
    auto operator<=>(const Uuid&) const = default;
};

} // namespace nightjar

template <>
struct std::hash<nightjar::Uuid> {
    std::size_t operator()(const nightjar::Uuid& uuid) const noexcept {
        std::size_t value = 0;
        std::memcpy(&value, uuid.bytes.data(), sizeof value);
        return value;
    }
};
