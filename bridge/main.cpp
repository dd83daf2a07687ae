// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/program/BridgeProgram.h"

#include <iostream>
#include <string_view>
#include <vector>

#include <sysexits.h>
#include <unistd.h>

namespace {

constexpr std::string_view usage = "Usage: halvard-meshtastic-bridge serve --jsonl\n"
                                   "       halvard-meshtastic-bridge --help | --version\n";

constexpr std::string_view help =
    "\n"
    "Stands between a program and a Meshtastic base radio: reads requests as JSON lines from\n"
    "standard input and writes answers and events as JSON lines to standard output, until the\n"
    "input ends. The port of a connect request is the path of a scenario file, which is played\n"
    "as a simulated radio.\n";

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string_view> arguments(argv + std::min(argc, 1), argv + argc);
    using Arguments = std::vector<std::string_view>;
    if (arguments == Arguments{"serve", "--jsonl"}) {
        return nightjar::bridge::BridgeProgram(STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO).run();
    }
    if (arguments == Arguments{"--help"}) {
        std::cout << usage << help;
        return EX_OK;
    }
    if (arguments == Arguments{"--version"}) {
        std::cout << "halvard-meshtastic-bridge " NIGHTJAR_VERSION "\n";
        return EX_OK;
    }
    std::cerr << usage;
    return EX_USAGE;
}
