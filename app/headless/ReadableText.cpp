// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/ReadableText.h"

#include "core/base/Text.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>

namespace nightjar::headless {
namespace {

constexpr std::string_view replacement = "\uFFFD";

struct Character {
    std::uint32_t code;
    std::size_t length; ///< in bytes
};

/// The first character of well-formed UTF-8.
Character firstCharacter(std::string_view text) {
    const auto byte = [&](std::size_t index) { return static_cast<std::uint8_t>(text[index]); };
    const std::uint32_t lead = byte(0);
    if (lead < 0x80)
        return {lead, 1};
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    std::uint32_t code = lead & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i)
        code = code << 6 | (byte(i) & 0x3FU);
    return {code, length};
}

bool isBreak(std::uint32_t code) {
    return (code >= 0x09 && code <= 0x0D) || code == 0x85 || code == 0x2028 || code == 0x2029;
}

bool isHarmful(std::uint32_t code) {
    const bool isControl = code < 0x20 || (code >= 0x7F && code < 0xA0);
    const bool turnsDirection = code == 0x061C || code == 0x200E || code == 0x200F ||
                                (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
    return isControl || turnsDirection;
}

std::string decimal(double value) {
    std::array<char, 32> text;
    const int length = std::snprintf(text.data(), text.size(), "%.1f", value);
    return {text.data(), static_cast<std::size_t>(length)};
}

} // namespace

std::string terminalSafe(std::string_view text, std::size_t mostCharacters) {
    // No character is longer than four bytes, so the rest need not be looked at.
    const auto valid = withReplacedInvalidUtf8(text.substr(0, mostCharacters * 4 + 4));
    std::string safe;
    std::size_t count = 0;
    for (std::string_view rest = valid; !rest.empty();) {
        if (count++ == mostCharacters)
            return safe + "…";
        const auto [code, length] = firstCharacter(rest);
        if (isBreak(code))
            safe += ' ';
        else if (isHarmful(code))
            safe += replacement;
        else
            safe += rest.substr(0, length);
        rest.remove_prefix(length);
    }
    return safe;
}

std::string localTime(Date date) {
    const auto seconds = static_cast<std::time_t>(std::floor(unixSeconds(date)));
    std::tm parts{};
    ::localtime_r(&seconds, &parts);
    std::array<char, 16> text{};
    const auto length = std::strftime(text.data(), text.size(), "%H:%M:%S", &parts);
    return {text.data(), length};
}

std::string nodeSentence(const MeshNode& node, std::string_view name, Date now) {
    std::array<char, 16> number{};
    std::snprintf(number.data(), number.size(), "!%08x", node.number);
    std::string sentence = "node ";
    sentence += name;
    if (name != number.data())
        sentence.append(" (").append(number.data()).append(")");

    const auto reached = node.reachability(now);
    switch (reached.kind) {
    case MeshNodeReachability::Kind::directlyHeard:
        sentence += " heard directly";
        break;
    case MeshNodeReachability::Kind::mesh:
        sentence += " reached over the mesh";
        if (reached.hops)
            sentence += ", " + std::to_string(*reached.hops) + (*reached.hops == 1 ? " hop" : " hops");
        break;
    case MeshNodeReachability::Kind::stale:
        sentence += " not heard lately";
        break;
    }
    // Radios report 101 while they are plugged in.
    if (node.batteryLevel > 100)
        sentence += ", external power";
    else if (node.batteryLevel)
        sentence += ", battery " + std::to_string(*node.batteryLevel) + " %";
    if (node.signalToNoise)
        sentence += ", SNR " + decimal(*node.signalToNoise) + " dB";
    return sentence;
}

} // namespace nightjar::headless
