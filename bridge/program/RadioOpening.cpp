// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/program/RadioOpening.h"

#include "bridge/scenario/ScenarioParser.h"
#include "bridge/simulated/SimulatedRadio.h"
#include "core/base/AtomicFile.h"

#include <cerrno>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

namespace nightjar::bridge {
namespace {

constexpr off_t largestScenario = off_t{4} << 20;

std::expected<std::string, std::string> scenarioText(const std::string& port) {
    const auto because = [&](int error) {
        return std::unexpected("The port " + port + " cannot be opened: " + std::strerror(error) + ".");
    };
    struct stat status {};
    if (::stat(port.c_str(), &status) != 0) {
        if (errno == ENOENT || errno == ENOTDIR)
            return std::unexpected("The port " + port + " does not exist.");
        return because(errno);
    }
    if (S_ISCHR(status.st_mode)) {
        return std::unexpected("This bridge cannot speak to radios yet; it plays scenario files only.");
    }
    if (!S_ISREG(status.st_mode)) {
        return std::unexpected("The port " + port + " is neither a radio nor a scenario file.");
    }
    if (status.st_size > largestScenario)
        return std::unexpected("The scenario file is larger than 4 MB.");
    if (::access(port.c_str(), R_OK) != 0)
        return because(errno);
    auto text = readWholeFile(port);
    if (!text)
        return std::unexpected("The port " + port + " cannot be read.");
    return text;
}

} // namespace

RadioOpener radioOpener(Mischief& mischief) {
    return [&mischief](const std::string& port,
                       RadioListener& listener) -> std::expected<std::unique_ptr<Radio>, std::string> {
        const auto text = scenarioText(port);
        if (!text)
            return std::unexpected(text.error());
        auto scenario = parseScenario(*text);
        if (!scenario)
            return std::unexpected(scenario.error());
        return std::make_unique<SimulatedRadio>(std::move(*scenario), port, listener, mischief);
    };
}

} // namespace nightjar::bridge
