// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <expected>
#include <set>
#include <span>
#include <string>
#include <string_view>

namespace nightjar::headless {

/// A scan that can be started with the program.
enum class Watch { bluetooth, network };

/// What the user asked for on the command line.
struct CommandLine {
    bool headless = false;
    bool jsonLines = false; ///< implies `headless`
    bool demo = false;
    bool help = false;
    bool version = false;
    std::set<Watch> watches{};

    bool operator==(const CommandLine&) const = default;

    /// Reads the arguments after the program's name; a sentence for the user where they make no sense.
    [[nodiscard]] static std::expected<CommandLine, std::string>
    parse(std::span<const std::string_view> arguments);
    [[nodiscard]] static std::string_view helpText();
};

[[nodiscard]] std::string_view name(Watch watch);

} // namespace nightjar::headless
