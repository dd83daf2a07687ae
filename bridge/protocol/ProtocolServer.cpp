// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/protocol/ProtocolServer.h"

#include "bridge/protocol/Answers.h"
#include "core/base/Text.h"
#include "core/json/JsonValue.h"

#include <algorithm>

namespace nightjar::bridge {

ProtocolServer::ProtocolServer(LineSink& sink, RadioOpener openRadio)
    : m_sink(sink), m_openRadio(std::move(openRadio)), m_decoder(makeBridgeDecoder()) {}

void ProtocolServer::greet() {
    emit({});
}

void ProtocolServer::emit(const MeshtasticBridgeResponse& response) {
    const bool answersConnect = response.requestID && response.requestID == m_connecting;
    if (answersConnect) {
        m_connecting.reset();
        m_connected = response.event == MeshtasticBridgeEvent::connected;
    }
    if (response.event == MeshtasticBridgeEvent::disconnected)
        m_connected = false;
    if (const auto line = encodeLine(response))
        m_sink.writeLine(*line);
}

void ProtocolServer::advance(Moment now, short ready) {
    if (m_radio)
        m_radio->advance(now, ready);
}

void ProtocolServer::handleLine(std::string_view line, Moment now) {
    if (trimmed(line).empty())
        return;
    const auto request = m_decoder.decode<MeshtasticBridgeRequest>(line);
    if (!request)
        return refuse(line);
    if (request->protocolVersion != meshtasticBridgeProtocolVersion) {
        return emit(errorAnswer(request->requestID, "This bridge speaks version 1 of the protocol only."));
    }
    handle(*request, now);
}

void ProtocolServer::refuse(std::string_view line) {
    const auto value = json::JsonValue::parse(line);
    const auto* member = value ? value->member("requestID") : nullptr;
    const auto* text = member ? member->get<std::string>() : nullptr;
    const auto request = text ? Uuid::fromText(*text) : std::nullopt;
    if (!request)
        return;
    const auto* command = value->member("command");
    const auto* name = command ? command->get<std::string>() : nullptr;
    const bool known = name && std::ranges::count(meshtasticBridgeCommandNames, *name) != 0;
    emit(errorAnswer(request, known ? "The request cannot be read: a field is missing or of the wrong type."
                                    : "The request names no command that this bridge knows."));
}

void ProtocolServer::handle(const MeshtasticBridgeRequest& request, Moment now) {
    using enum MeshtasticBridgeCommand;
    if (request.command == connect)
        return this->connect(request, now);
    if (request.command == disconnect)
        return this->disconnect(request, now);
    if (!m_connected)
        return emit(errorAnswer(request.requestID, "No radio is connected."));
    if (request.command == sendText)
        return this->sendText(request, now);
    if (request.command == applyRadioSettings)
        return applySettings(request, now);
    m_radio->readSettings(request.requestID, now);
}

void ProtocolServer::connect(const MeshtasticBridgeRequest& request, Moment now) {
    if (m_connecting)
        emit(errorAnswer(m_connecting, "Another connect request took the place of this one."));
    m_connecting.reset();
    m_connected = false;
    m_radio.reset();
    if (!request.port || request.port->empty()) {
        return emit(errorAnswer(request.requestID, "The connect request names no port."));
    }
    auto radio = m_openRadio(*request.port, *this);
    if (!radio)
        return emit(errorAnswer(request.requestID, radio.error()));
    m_radio = std::move(*radio);
    m_connecting = request.requestID;
    m_radio->connect(request.requestID, now);
}

void ProtocolServer::sendText(const MeshtasticBridgeRequest& request, Moment now) {
    if (!request.text || request.text->empty()) {
        return emit(errorAnswer(request.requestID, "There is no text to send."));
    }
    m_radio->sendText(request.requestID, {*request.text, request.recipient, request.channel.value_or(0)},
                      now);
}

void ProtocolServer::applySettings(const MeshtasticBridgeRequest& request, Moment now) {
    if (!request.settings)
        return emit(errorAnswer(request.requestID, "There are no settings to apply."));
    m_radio->applySettings(request.requestID, *request.settings, now);
}

void ProtocolServer::disconnect(const MeshtasticBridgeRequest& request, Moment now) {
    if (m_connecting)
        emit(errorAnswer(m_connecting, "The radio was released before it had answered."));
    m_connecting.reset();
    m_connected = false;
    // A client may release a radio that it never had.
    if (!m_radio)
        return emit(releasedAnswer(request.requestID));
    m_radio->disconnect(request.requestID, now);
}

} // namespace nightjar::bridge
