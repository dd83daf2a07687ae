// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/mesh/NightjarModel.h"

#include "app/alerts/AlertIdentifiers.h"
#include "app/mesh/ConnectionTexts.h"

// What the bridge tells.

namespace nightjar {

namespace {
/// How many positions are kept across restarts.
constexpr std::size_t maximumStoredPositions = 10'000;
} // namespace

void NightjarModel::hear(const MeshtasticBridgeResponse& response, int link) {
    if (link == m_connection.link()) {
        handle(response);
    } else if (m_connection.isReplaced(link)) {
        hearFormer(response);
    }
}

/// What a bridge says of the mesh while it is being replaced is as true as before; what it says of itself is
/// not.
void NightjarModel::hearFormer(const MeshtasticBridgeResponse& response) {
    if (response.event == MeshtasticBridgeEvent::node || response.event == MeshtasticBridgeEvent::message)
        handle(response);
}

void NightjarModel::handle(const MeshtasticBridgeResponse& response) {
    using Event = MeshtasticBridgeEvent;
    m_tellsOfNoRadio = false;
    switch (response.event) {
    case Event::ready:
    case Event::connected:
    case Event::sent:
        break;
    case Event::disconnected:
        handleDisconnected(response.status);
        break;
    case Event::status:
        if (response.status)
            m_status.connectionState.set(*response.status);
        break;
    case Event::localNode:
        m_connection.setLocalNode(response.localNodeID);
        rememberBaseNameIfAvailable();
        break;
    case Event::node:
        if (response.node)
            upsert(*response.node);
        break;
    case Event::channel:
        if (response.channel)
            m_conversation.nameChannel(*response.channel, response.channelName);
        break;
    case Event::message:
        if (response.message)
            receive(*response.message);
        break;
    case Event::radioSettings:
        m_radioSettings.receive(response.settings);
        break;
    case Event::error:
        m_status.errorMessage.set(response.error);
        break;
    }
}

void NightjarModel::handleDisconnected(const std::optional<std::string>& status) {
    clearBaseState();
    m_status.connectionState.set(status.value_or("Disconnected"));
    m_status.radioSettingsState.set(
        "The base station is disconnected. Activate it again in the Meshtastic sidebar.");
    m_tellsOfNoRadio = true;
}

void NightjarModel::handleLost(const MeshRadioError& error) {
    // Without its bridge the guard hears nothing: nothing may look connected.
    m_connection.lose();
    clearBaseState();
    m_radioSettings.abandon();
    // Whoever reads why there is no radio already learns nothing from the end of its bridge.
    if (m_tellsOfNoRadio)
        return;
    m_status.connectionState.set(ConnectionTexts::connectionStatus(error));
    m_status.radioSettingsState.set(ConnectionTexts::connectionDetail(error));
}

void NightjarModel::upsert(const MeshNode& node) {
    const bool bringsPosition = m_nodes.upsert(node);
    if (localNodeID() == node.number)
        rememberBaseNameIfAvailable();
    if (!selectedNodeID())
        m_selectedNodeID.set(guardedNodeID().value_or(node.number));
    if (bringsPosition)
        addPosition(*node.position, node.number);
}

void NightjarModel::addPosition(const MeshPosition& position, std::uint32_t number) {
    m_history.change([&position](std::vector<MeshPosition>& history) { history.push_back(position); });
    m_positionStore.append(position, maximumStoredPositions);
    if (const auto alert = m_guard.check(position, number))
        m_platform.notifications.post(*alert);
}

void NightjarModel::receive(const MeshMessage& message) {
    if (!m_conversation.receive(message))
        return;
    m_messageStore.append(message, maximumStoredMessages);
    if (!message.isOutgoing)
        notifyMessage(message);
}

void NightjarModel::notifyMessage(const MeshMessage& message) {
    m_platform.notifications.post({.identifier = AlertIdentifiers::message(message.id),
                                   .title = displayName(message.sender),
                                   .body = message.text,
                                   .sound = NotificationSound::standard});
}

void NightjarModel::rememberBaseNameIfAvailable() {
    const auto base = m_connection.base();
    const MeshNode* node = base ? m_nodes.find(base->number) : nullptr;
    if (node)
        m_baseNames.remember(base->port, node->longName);
}

} // namespace nightjar
