// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/simulated/SimulatedRadio.h"

#include "bridge/protocol/Answers.h"

#include <algorithm>

namespace nightjar::bridge {
namespace {

constexpr std::uint64_t packetStream = std::uint64_t{3} << 40;
/// The most that the radio takes in one text packet.
constexpr std::size_t longestText = 230;

MeshtasticBridgeResponse event(MeshtasticBridgeEvent kind) {
    MeshtasticBridgeResponse response;
    response.event = kind;
    return response;
}

/// Without a seed in the file each connection gets identities that no earlier one had, so that a client which
/// keeps messages does not take them for repeats.
std::uint64_t chosenSeed(const Scenario& scenario) {
    return scenario.seed.value_or(std::hash<Uuid>{}(Uuid::random()));
}

} // namespace

SimulatedRadio::SimulatedRadio(Scenario scenario, std::string port, RadioListener& listener,
                               Mischief& mischief)
    : m_scenario(std::move(scenario)),
      m_seed(chosenSeed(m_scenario)),
      m_port(std::move(port)),
      m_listener(listener),
      m_mischief(mischief),
      m_settings(m_scenario.radio.settings),
      m_faults(m_scenario.faults),
      m_packets(m_seed, packetStream) {}

void SimulatedRadio::emit(const MeshtasticBridgeResponse& response) {
    if (!m_silent)
        m_listener.emit(response);
}

void SimulatedRadio::emitStatus(std::string status) {
    auto response = event(MeshtasticBridgeEvent::status);
    response.status = std::move(status);
    emit(response);
}

void SimulatedRadio::setNow(Moment now) {
    m_agenda.setNow(now.monotonic - m_start.monotonic);
}

RadioWait SimulatedRadio::waits() const {
    RadioWait wait;
    if (m_flood)
        wait.due = m_start.monotonic;
    else if (const auto due = m_agenda.nextDue())
        wait.due = m_start.monotonic + *due;
    return wait;
}

void SimulatedRadio::advance(Moment now, short) {
    const Elapsed limit = now.monotonic - m_start.monotonic;
    if (m_flood)
        continueFlood();
    while (!m_flood && m_listener.hasRoom() && m_agenda.runNext(limit)) {
    }
}

void SimulatedRadio::connect(const Uuid& request, Moment now) {
    m_start = now;
    m_clock = {.speed = m_scenario.speed, .connectDate = now.date};
    const auto heard = [this](const MeshNode& node) {
        auto response = event(MeshtasticBridgeEvent::node);
        response.node = node;
        emit(response);
    };
    const auto said = [this](const MeshMessage& message) {
        if (m_deaf)
            return;
        m_nodes->hear(message.sender);
        auto response = event(MeshtasticBridgeEvent::message);
        response.message = message;
        emit(response);
    };
    m_nodes.emplace(m_scenario, m_seed, m_clock, m_agenda, heard);
    m_chatter.emplace(m_scenario, m_seed, m_clock, m_agenda, *m_nodes, said);
    m_backAt = WorldClock::realSeconds(m_scenario.radio.handshakeSeconds);
    answer(MeshtasticBridgeCommand::connect, connectedAnswer(request, m_port), [this] { startWorld(); });
}

void SimulatedRadio::startWorld() {
    m_running = true;
    announce();
    emit(settingsAnswer({}, m_settings));
    m_nodes->start();
    m_chatter->start();
    for (const Fault& fault : m_scenario.faults) {
        const auto* seconds = std::get_if<double>(&fault.trigger);
        if (!seconds)
            continue;
        m_agenda.in(WorldClock::realSeconds(*seconds), [this, &fault] {
            if (m_running)
                perform(fault);
        });
    }
}

void SimulatedRadio::stopWorld() {
    m_running = false;
    m_flood.reset();
    m_nodes->stop();
    m_chatter->stop();
}

void SimulatedRadio::announce() {
    auto local = event(MeshtasticBridgeEvent::localNode);
    local.localNodeID = m_nodes->baseNumber();
    emit(local);
    for (const ChannelPlan& channel : m_scenario.radio.channels) {
        auto response = event(MeshtasticBridgeEvent::channel);
        response.channel = channel.index;
        response.channelName = channel.name;
        emit(response);
    }
    m_nodes->tellAll();
}

bool SimulatedRadio::hasChannel(std::uint32_t channel) const {
    return std::ranges::count(m_scenario.radio.channels, channel, &ChannelPlan::index) != 0;
}

void SimulatedRadio::sendText(const Uuid& request, const TextOrder& order, Moment now) {
    setNow(now);
    std::optional<std::string> refusal;
    if (order.text.size() > longestText) {
        refusal = "The text is too long for the mesh: " + std::to_string(order.text.size()) + " of at most " +
                  std::to_string(longestText) + " bytes.";
    } else if (!hasChannel(order.channel)) {
        refusal = "The radio has no channel " + std::to_string(order.channel) + ".";
    }
    const auto response = refusal ? errorAnswer(request, refusal) : sentAnswer(request, m_packets.packetID());
    answer(MeshtasticBridgeCommand::sendText, response, [this, order, taken = !refusal] {
        if (taken && m_running)
            m_chatter->answer(order);
    });
}

void SimulatedRadio::readSettings(const Uuid& request, Moment now) {
    setNow(now);
    answer(MeshtasticBridgeCommand::readRadioSettings, settingsAnswer(request, m_settings), {});
}

void SimulatedRadio::applySettings(const Uuid& request, const MeshtasticRadioSettings& settings, Moment now) {
    setNow(now);
    auto wanted = settings;
    if (m_scenario.radio.maximumTxPower)
        wanted.txPower = std::min(wanted.txPower, *m_scenario.radio.maximumTxPower);
    const auto response = sentAnswer(request, m_packets.packetID());
    answer(MeshtasticBridgeCommand::applyRadioSettings, response, [this, wanted] {
        m_settings = wanted;
        const RestartPlan& plan = m_scenario.radio.restart;
        if (plan.onApply)
            m_agenda.in(WorldClock::realSeconds(plan.afterSeconds), [this] { restart(); });
    });
}

void SimulatedRadio::disconnect(const Uuid& request, Moment now) {
    setNow(now);
    stopWorld();
    answer(MeshtasticBridgeCommand::disconnect, releasedAnswer(request), {});
}

} // namespace nightjar::bridge
