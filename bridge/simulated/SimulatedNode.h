// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridge/simulated/Movement.h"
#include "bridge/simulated/WorldClock.h"
#include "core/mesh/MeshNode.h"

namespace nightjar::bridge {

/// One node of the made-up mesh and what the base radio last heard of it.
class SimulatedNode {
public:
    SimulatedNode(const NodePlan& plan, const WorldClock& clock, std::uint64_t seed);

    [[nodiscard]] const MeshNode& record() const { return m_record; }
    [[nodiscard]] bool reports() const { return m_plan.reportWorldSeconds.has_value(); }
    /// World seconds from connecting to the first report: anywhere in the interval, so that nodes do not
    /// speak in choir.
    [[nodiscard]] double firstReport();
    /// World seconds from the report at that time to the next one.
    [[nodiscard]] double nextReport(double worldSeconds);

    /// The base hears a new fix of the node, or only its battery when it has no receiver for positions.
    void report(Elapsed now);
    /// The base hears the node without a fix: the position stays the same to the last field.
    void hear(Elapsed now);

private:
    void setPosition(Place place, Date date);
    void drainBattery(double worldSeconds);

    NodePlan m_plan;
    const WorldClock& m_clock;
    Random m_random;
    std::unique_ptr<Movement> m_movement; ///< null without a position
    MeshNode m_record;
};

} // namespace nightjar::bridge
