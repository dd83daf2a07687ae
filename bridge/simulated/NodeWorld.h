// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridge/simulated/SimulatedNode.h"

#include <functional>
#include <vector>

namespace nightjar::bridge {

/// All nodes of the made-up mesh, the base radio's own first. Tells each record that the base radio hears.
class NodeWorld {
public:
    using Heard = std::function<void(const MeshNode&)>;

    NodeWorld(const Scenario& scenario, std::uint64_t seed, const WorldClock& clock, Agenda& agenda,
              Heard heard);

    /// Enters the reports of all nodes that make some.
    void start();
    /// Tells what the base radio knows of every node, as it was last heard.
    void tellAll() const;
    /// A node was heard with something else than a report.
    void hear(std::uint32_t number);
    /// While deaf, the base radio hears nothing and knows what it knew.
    void setDeaf(bool deaf) { m_deaf = deaf; }
    /// Enters no more reports.
    void stop() { m_stopped = true; }

    [[nodiscard]] std::uint32_t baseNumber() const { return m_nodes.front().record().number; }
    /// Whether somebody is there who could answer; the base radio itself does not.
    [[nodiscard]] bool isAlive(std::uint32_t number) const;
    [[nodiscard]] std::vector<std::uint32_t> alive() const;

private:
    void schedule(SimulatedNode& node, double worldSeconds);
    void report(SimulatedNode& node);

    const WorldClock& m_clock;
    Agenda& m_agenda;
    Heard m_heard;
    std::vector<SimulatedNode> m_nodes;
    bool m_deaf = false;
    bool m_stopped = false;
};

} // namespace nightjar::bridge
