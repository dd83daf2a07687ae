// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/CommandLine.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace nightjar::headless {
namespace {

constexpr std::array<std::pair<std::string_view, Watch>, 2> watchNames{{
    {"bluetooth", Watch::bluetooth},
    {"network", Watch::network},
}};

constexpr std::array<std::pair<std::string_view, bool CommandLine::*>, 5> switches{{
    {"--headless", &CommandLine::headless},
    {"--jsonl", &CommandLine::jsonLines},
    {"--demo", &CommandLine::demo},
    {"--help", &CommandLine::help},
    {"--version", &CommandLine::version},
}};

std::string quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

/// A sentence where a name is unknown.
std::optional<std::string> addWatches(std::set<Watch>& watches, std::string_view list) {
    while (true) {
        const auto comma = list.find(',');
        const auto word = list.substr(0, comma);
        const auto* known = std::ranges::find(watchNames, word, &std::pair<std::string_view, Watch>::first);
        if (known == watchNames.end()) {
            return "--watch knows \"bluetooth\" and \"network\", not " + quoted(word) + '.';
        }
        watches.insert(known->second);
        if (comma == std::string_view::npos)
            return std::nullopt;
        list.remove_prefix(comma + 1);
    }
}

} // namespace

std::expected<CommandLine, std::string> CommandLine::parse(std::span<const std::string_view> arguments) {
    constexpr std::string_view watchOption = "--watch";
    CommandLine result;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto argument = arguments[i];
        if (const auto* found = std::ranges::find(switches, argument, &decltype(switches)::value_type::first);
            found != switches.end()) {
            result.*found->second = true;
            continue;
        }
        if (!argument.starts_with(watchOption)) {
            return std::unexpected("Unknown option " + quoted(argument) + "; see nightjar --help.");
        }
        auto value = argument.substr(watchOption.size());
        if (value.starts_with('=')) {
            value.remove_prefix(1);
        } else if (!value.empty()) {
            return std::unexpected("Unknown option " + quoted(argument) + "; see nightjar --help.");
        } else if (++i < arguments.size()) {
            value = arguments[i];
        } else {
            return std::unexpected(std::string("--watch needs a list, as in --watch bluetooth,network."));
        }
        if (auto sentence = addWatches(result.watches, value))
            return std::unexpected(std::move(*sentence));
    }
    if (result.jsonLines)
        result.headless = true;
    return result;
}

std::string_view CommandLine::helpText() {
    return R"(Usage: nightjar [options]

Watches over radio nodes, Bluetooth devices and the local network, and raises an alert when one of them moves or leaves.

  --headless               run without a window: one readable line per change and alert
  --jsonl                  JSON lines on standard output, operations as JSON lines on standard input (headless)
  --demo                   run in a made-up world that needs no hardware and never touches your files
  --watch LIST             start these scans at once: bluetooth, network or both, separated by a comma
  --help                   show this text
  --version                show the version
)";
}

std::string_view name(Watch watch) {
    return std::ranges::find(watchNames, watch, &std::pair<std::string_view, Watch>::second)->first;
}

} // namespace nightjar::headless
