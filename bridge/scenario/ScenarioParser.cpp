// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/scenario/ScenarioParser.h"

#include "bridge/scenario/ScenarioParts.h"

#include <algorithm>
#include <set>

namespace nightjar::bridge {
namespace {

constexpr int formVersion = 1;

/// Numbers that name nodes must do so once, and whoever speaks must exist.
void checkNumbers(const Scenario& scenario, Problem& problem) {
    std::set<std::uint32_t> known{scenario.radio.node.number};
    for (std::size_t i = 0; i < scenario.nodes.size(); ++i) {
        if (known.insert(scenario.nodes[i].number).second)
            continue;
        problem.report("nodes[" + std::to_string(i) + "].number", "is used twice");
    }
    for (std::size_t i = 0; i < scenario.script.size(); ++i) {
        const std::string path = "chatter.script[" + std::to_string(i) + "]";
        if (!known.contains(scenario.script[i].from))
            problem.report(path + ".from", "is not a node of this file");
    }
    for (std::size_t i = 0; i < scenario.replies.size(); ++i) {
        const auto from = scenario.replies[i].from;
        const std::string path = "replies[" + std::to_string(i) + "].from";
        if (from && !known.contains(*from))
            problem.report(path, "is not a node of this file");
    }
}

void checkChannels(const Scenario& scenario, Problem& problem) {
    const auto exists = [&](std::uint32_t channel) {
        return std::ranges::count(scenario.radio.channels, channel, &ChannelPlan::index) != 0;
    };
    for (std::size_t i = 0; i < scenario.script.size(); ++i) {
        const std::string path = "chatter.script[" + std::to_string(i) + "]";
        if (!exists(scenario.script[i].channel))
            problem.report(path + ".channel", "is not a channel of the radio");
    }
    if (scenario.randomTexts && !std::ranges::all_of(scenario.randomTexts->channels, exists)) {
        problem.report("chatter.random.channels", "names a channel that the radio does not have");
    }
}

} // namespace

std::expected<Scenario, std::string> parseScenario(std::string_view text) {
    const auto root = json::JsonValue::parse(text);
    if (!root)
        return std::unexpected("The file is not a scenario: it does not hold valid JSON.");

    Problem problem;
    ObjectReader reader(*root, "", problem);
    Scenario scenario;
    std::ignore = reader.require("scenario").integer<int>("scenario", formVersion, formVersion);
    std::ignore = reader.text("about");
    scenario.seed = reader.integer<std::uint32_t>("seed");
    scenario.speed = reader.number("speed", {0.01, 100'000}).value_or(1);
    reader.require("radio");
    if (auto radio = reader.object("radio")) {
        scenario.radio = readRadio(*radio);
        radio->finish();
    }
    reader.eachObject("nodes", [&](ObjectReader& node) { scenario.nodes.push_back(readNode(node)); });
    readChatter(reader, scenario);
    reader.eachObject("faults", [&](ObjectReader& fault) { scenario.faults.push_back(readFault(fault)); });
    reader.finish();
    checkNumbers(scenario, problem);
    checkChannels(scenario, problem);

    if (problem.sentence())
        return std::unexpected("The scenario file is not valid: " + *problem.sentence());
    return scenario;
}

} // namespace nightjar::bridge
