// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/simulated/NodeWorld.h"

#include <algorithm>

namespace nightjar::bridge {

NodeWorld::NodeWorld(const Scenario& scenario, std::uint64_t seed, const WorldClock& clock, Agenda& agenda,
                     Heard heard)
    : m_clock(clock), m_agenda(agenda), m_heard(std::move(heard)) {
    m_nodes.reserve(scenario.nodes.size() + 1);
    m_nodes.emplace_back(scenario.radio.node, clock, seed);
    for (const NodePlan& plan : scenario.nodes)
        m_nodes.emplace_back(plan, clock, seed);
}

void NodeWorld::start() {
    const double now = m_clock.worldSeconds(m_agenda.now());
    for (SimulatedNode& node : m_nodes) {
        if (node.reports())
            schedule(node, now + node.firstReport());
    }
}

void NodeWorld::schedule(SimulatedNode& node, double worldSeconds) {
    m_agenda.at(m_clock.elapsed(worldSeconds), [this, &node] { report(node); });
}

void NodeWorld::report(SimulatedNode& node) {
    if (m_stopped)
        return;
    if (!m_deaf) {
        node.report(m_agenda.now());
        m_heard(node.record());
    }
    const double now = m_clock.worldSeconds(m_agenda.now());
    schedule(node, now + node.nextReport(now));
}

void NodeWorld::tellAll() const {
    for (const SimulatedNode& node : m_nodes)
        m_heard(node.record());
}

void NodeWorld::hear(std::uint32_t number) {
    const auto node =
        std::ranges::find(m_nodes, number, [](const auto& each) { return each.record().number; });
    if (node == m_nodes.end())
        return;
    node->hear(m_agenda.now());
    m_heard(node->record());
}

bool NodeWorld::isAlive(std::uint32_t number) const {
    const auto numbers = alive();
    return std::ranges::find(numbers, number) != numbers.end();
}

std::vector<std::uint32_t> NodeWorld::alive() const {
    std::vector<std::uint32_t> numbers;
    for (const SimulatedNode& node : m_nodes) {
        if (node.reports() && &node != &m_nodes.front())
            numbers.push_back(node.record().number);
    }
    return numbers;
}

} // namespace nightjar::bridge
