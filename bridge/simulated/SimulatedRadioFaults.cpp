// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
// How the simulated radio goes wrong on purpose.
#include "bridge/protocol/Answers.h"
#include "bridge/simulated/SimulatedRadio.h"

#include <algorithm>

namespace nightjar::bridge {
namespace {

constexpr std::size_t floodChunk = std::size_t{128} << 10;

/// Without the fields that its command requires.
void strip(MeshtasticBridgeResponse& response) {
    response.port.reset();
    response.packetID.reset();
    response.settings.reset();
}

} // namespace

void SimulatedRadio::answer(MeshtasticBridgeCommand command, MeshtasticBridgeResponse response,
                            Effect effect) {
    const Fault* fault = m_faults.meet(command);
    const auto is = [fault](FaultKind kind) { return fault && fault->kind == kind; };
    if (is(FaultKind::silence))
        return;
    if (is(FaultKind::error)) {
        response = errorAnswer(response.requestID, fault->text);
        effect = {};
    }
    if (is(FaultKind::incomplete))
        strip(response);
    const double delay = m_scenario.radio.answerSeconds + (is(FaultKind::late) ? fault->seconds : 0);
    const Elapsed due = std::max(m_agenda.now() + WorldClock::realSeconds(delay), m_backAt);
    m_agenda.at(due, [this, response = std::move(response), effect = std::move(effect), fault] {
        deliver(response, fault);
        if (effect && !m_silent)
            effect();
        const bool afterwards = fault && fault->kind >= FaultKind::exit;
        if (afterwards && !m_silent)
            perform(*fault);
    });
}

void SimulatedRadio::deliver(MeshtasticBridgeResponse response, const Fault* fault) {
    if (!fault)
        return emit(response);
    if (fault->kind == FaultKind::exit && !fault->afterAnswer)
        return perform(*fault);
    if (fault->kind == FaultKind::version)
        response.protocolVersion = fault->version;
    if (fault->kind == FaultKind::half || fault->kind == FaultKind::garbage)
        perform(*fault);
    emit(response);
    if (fault->kind == FaultKind::twice)
        emit(response);
}

void SimulatedRadio::perform(const Fault& fault) {
    switch (fault.kind) {
    case FaultKind::error:
        return emit(errorAnswer({}, fault.text));
    case FaultKind::silence:
        m_silent = true;
        return stopWorld();
    case FaultKind::version: {
        MeshtasticBridgeResponse response;
        response.protocolVersion = fault.version;
        return emit(response);
    }
    case FaultKind::half:
        return m_mischief.cutNextLine(Seconds{fault.seconds});
    case FaultKind::garbage:
        return m_mischief.writeRaw(garbageLines());
    case FaultKind::exit:
        m_silent = true;
        stopWorld();
        return m_mischief.exit(fault.code);
    case FaultKind::closeOutput:
        return m_mischief.closeOutput();
    case FaultKind::disconnected: {
        stopWorld();
        MeshtasticBridgeResponse response;
        response.event = MeshtasticBridgeEvent::disconnected;
        response.status = fault.text;
        return emit(response);
    }
    case FaultKind::status:
        return emitStatus(fault.text.value_or(""));
    case FaultKind::restart:
        return restart();
    case FaultKind::flood:
        return startFlood(fault);
    case FaultKind::standardError:
        return m_mischief.writeToStandardError(std::string(fault.bytes, 'e'));
    case FaultKind::stubborn:
        return m_mischief.refuseToEnd(Seconds{fault.seconds});
    case FaultKind::late:
    case FaultKind::twice:
    case FaultKind::incomplete:
        return; // These are ways of answering.
    }
}

void SimulatedRadio::restart() {
    if (!m_running)
        return;
    emitStatus("Radio is restarting…");
    m_deaf = true;
    m_nodes->setDeaf(true);
    m_backAt = m_agenda.now() + WorldClock::realSeconds(m_scenario.radio.restart.lastsSeconds);
    m_agenda.at(m_backAt, [this, backAt = m_backAt] {
        if (!m_running || backAt != m_backAt)
            return;
        m_deaf = false;
        m_nodes->setDeaf(false);
        emitStatus("Connected");
        announce();
    });
}

void SimulatedRadio::startFlood(const Fault& fault) {
    const auto around = m_scenario.radio.node.position.value_or(Place{52.0, 5.0});
    m_flood.emplace(fault, around, m_clock.date(m_agenda.now()), m_seed);
}

void SimulatedRadio::continueFlood() {
    std::string chunk;
    chunk.reserve(floodChunk + 1024);
    while (m_flood && m_listener.hasRoom()) {
        chunk.clear();
        m_flood->generate(chunk, floodChunk);
        m_mischief.writeRaw(chunk);
        if (!m_flood->isDone())
            continue;
        const auto status = m_flood->closingStatus();
        m_flood.reset();
        if (status)
            emitStatus(*status);
    }
}

} // namespace nightjar::bridge
