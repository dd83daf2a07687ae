// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridge/protocol/Radio.h"
#include "bridge/simulated/NodeWorld.h"
#include "core/mesh/MeshMessage.h"

#include <functional>

namespace nightjar::bridge {

/// The texts of the made-up mesh: those of a script, random ones, and replies to what the client sends.
class Chatter {
public:
    using Say = std::function<void(const MeshMessage&)>;

    Chatter(const Scenario& scenario, std::uint64_t seed, const WorldClock& clock, Agenda& agenda,
            const NodeWorld& nodes, Say say);

    void start();
    void stop() { m_stopped = true; }
    /// The client sent a text that the mesh took.
    void answer(const TextOrder& order);

private:
    void scheduleRandom();
    void sayRandom();
    void say(Random& random, std::uint32_t from, bool direct, std::uint32_t channel, std::string text);
    [[nodiscard]] const Reply* replyTo(const TextOrder& order) const;

    const Scenario& m_scenario;
    const WorldClock& m_clock;
    Agenda& m_agenda;
    const NodeWorld& m_nodes;
    Say m_say;
    Random m_random;
    Random m_replyRandom; ///< its own, so that typing does not change what the mesh says by itself
    bool m_stopped = false;
};

} // namespace nightjar::bridge
