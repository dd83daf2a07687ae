// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/mesh/NightjarModel.h"

#include "radio/BridgeLocator.h"

// What the user can do.

namespace nightjar {

void NightjarModel::setErrorMessage(const std::optional<std::string>& sentence) {
    m_status.errorMessage.set(sentence);
}

std::vector<MeshNode> NightjarModel::directlyHeardNodes() const {
    return remoteNodes(true);
}

std::vector<MeshNode> NightjarModel::otherMeshNodes() const {
    return remoteNodes(false);
}

std::vector<MeshNode> NightjarModel::remoteNodes(bool directlyHeard) const {
    const auto guarded = guardedNodeID();
    const auto now = m_platform.scheduler.now();
    std::vector<MeshNode> remote;
    for (const MeshNode& node : nodes()) {
        if (node.number == localNodeID() || node.number == guarded)
            continue;
        const auto isHeard = node.reachability(now) == MeshNodeReachability::directlyHeard();
        if (isHeard == directlyHeard)
            remote.push_back(node);
    }
    return remote;
}

std::string NightjarModel::bridgeStatus() const {
    return BridgeLocator::bridgeStatus(m_platform.host);
}

void NightjarModel::refreshPorts() {
    m_connection.refreshPorts();
}

void NightjarModel::connect(const std::optional<std::string>& port) {
    m_tellsOfNoRadio = false;
    const auto attempt = m_connection.begin(port);
    if (!attempt) {
        m_tellsOfNoRadio = true;
        return;
    }

    const auto generation = attempt->generation;
    RadioLink::Listener listener{
        .onEvent = m_lifetime.guarded(
            [this, generation](const MeshtasticBridgeResponse& response) { hear(response, generation); }),
        .onLost = m_lifetime.guarded([this, generation](const MeshRadioError& error) {
            if (generation == m_connection.link())
                handleLost(error);
        })};
    auto done =
        m_lifetime.guarded([this, generation](const std::expected<std::string, MeshRadioError>& answer) {
            if (m_connection.isAwaited(generation))
                finishConnect(answer);
        });
    m_radio->connect(attempt->port, std::move(listener), std::move(done));
}

void NightjarModel::finishConnect(const std::expected<std::string, MeshRadioError>& port) {
    if (!port) {
        m_connection.reject(port.error());
        return;
    }
    m_connection.accept(*port);
    rememberBaseNameIfAvailable();
    m_connection.showConnected();
}

void NightjarModel::disconnect() {
    m_connection.release();
    m_radio->disconnect([] {});
    clearBaseState();
    m_status.connectionState.set("Disconnected");
    m_status.radioSettingsState.set("Activate a base station in the Meshtastic sidebar.");
}

void NightjarModel::clearBaseState() {
    m_connection.drop();
    m_selectedNodeID.set({});
    m_nodes.clear();
    m_conversation.resetChannels();
    m_radioSettings.forget();
}

void NightjarModel::sendMessage(const std::string& text) {
    m_sender.send(text);
}

void NightjarModel::setGuarded(const MeshNode& node) {
    // The node may be one of `nodes()`, which does not survive the reordering.
    const auto number = node.number;
    m_nodes.reorder([this, number] { m_guard.setGuardedNodeID(number); });
    m_selectedNodeID.set(number);
}

void NightjarModel::markGuardedPosition() {
    const auto guarded = guardedNodeID();
    const MeshNode* node = guarded ? m_nodes.find(*guarded) : nullptr;
    const auto position = node ? node->position : std::nullopt;
    if (!position || !m_guard.mark(*position)) {
        m_status.errorMessage.set("The guarded device does not have a position yet.");
        return;
    }
    m_platform.notifications.requestPermission();
}

void NightjarModel::clearParking() {
    m_guard.clearParking();
}

void NightjarModel::clearGuardedDevice() {
    m_nodes.reorder([this] { m_guard.setGuardedNodeID({}); });
    clearParking();
}

void NightjarModel::requestRadioSettings() {
    m_radioSettings.request();
}

void NightjarModel::applyRadioSettings(const MeshtasticRadioSettings& settings) {
    m_radioSettings.apply(settings);
}

} // namespace nightjar
