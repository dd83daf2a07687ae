// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridge/protocol/Radio.h"
#include "bridge/simulated/Chatter.h"
#include "bridge/simulated/FaultPlan.h"
#include "bridge/simulated/Mischief.h"
#include "bridge/simulated/NodeFlood.h"

namespace nightjar::bridge {

/// A radio that plays a scenario. While the client does not read, its world stands still and catches up
/// afterwards, so that memory stays bounded and nothing is lost.
class SimulatedRadio final : public Radio {
public:
    SimulatedRadio(Scenario scenario, std::string port, RadioListener& listener, Mischief& mischief);

    void connect(const Uuid& request, Moment now) override;
    void sendText(const Uuid& request, const TextOrder& order, Moment now) override;
    void readSettings(const Uuid& request, Moment now) override;
    void applySettings(const Uuid& request, const MeshtasticRadioSettings& settings, Moment now) override;
    void disconnect(const Uuid& request, Moment now) override;
    [[nodiscard]] RadioWait waits() const override;
    void advance(Moment now, short ready) override;

private:
    using Effect = std::function<void()>;

    void setNow(Moment now);
    /// Enters the answer to a command, as the faults of the file will have it. `effect` is what the command
    /// does; it does not happen to a command that fails or gets no answer.
    void answer(MeshtasticBridgeCommand command, MeshtasticBridgeResponse response, Effect effect);
    void deliver(MeshtasticBridgeResponse response, const Fault* fault);
    void perform(const Fault& fault);
    void restart();
    void startFlood(const Fault& fault);
    void continueFlood();

    void startWorld();
    void stopWorld();
    void announce();
    void emit(const MeshtasticBridgeResponse& response);
    void emitStatus(std::string status);
    [[nodiscard]] bool hasChannel(std::uint32_t channel) const;

    const Scenario m_scenario;
    const std::uint64_t m_seed;
    const std::string m_port;
    RadioListener& m_listener;
    Mischief& m_mischief;
    MeshtasticRadioSettings m_settings;
    FaultPlan m_faults;
    Random m_packets;
    Moment m_start{}; ///< of the connect request
    WorldClock m_clock;
    Agenda m_agenda;
    std::optional<NodeWorld> m_nodes; ///< these two from `connect` on
    std::optional<Chatter> m_chatter;
    std::optional<NodeFlood> m_flood;
    Elapsed m_backAt{};     ///< the end of the latest restart; nothing is answered before it
    bool m_running = false; ///< the world goes on
    bool m_silent = false;  ///< hangs: no line comes any more
    bool m_deaf = false;    ///< restarts: hears nothing of the mesh
};

} // namespace nightjar::bridge
