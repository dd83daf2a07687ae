// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/mesh/NightjarModel.h"

namespace nightjar {

namespace {

/// Room for months of a busy mesh: addresses only, memory comes as it fills. Growing by copying tens of
/// megabytes would hold up the main thread.
constexpr std::size_t roomForPositions = std::size_t{1} << 20U;

std::optional<std::filesystem::path> dataFolder(const HostEnvironment& host) {
    return host.applicationSupportFolder().transform(
        [](const auto& home) { return home / "Halvard Nightjar"; });
}

std::optional<std::filesystem::path> fileIn(const std::optional<std::filesystem::path>& folder,
                                            const char* name) {
    return folder.transform([name](const auto& path) { return path / name; });
}

} // namespace

NightjarModel::NightjarModel(const PlatformServices& platform, std::unique_ptr<RadioLink> radio)
    : m_platform(platform),
      m_bluetoothTrackers(platform),
      m_localNetwork(platform),
      m_radio(std::move(radio)),
      m_folder(dataFolder(platform.host)),
      m_positionStore(fileIn(m_folder, "positions.json")),
      m_messageStore(fileIn(m_folder, "messages.json")),
      m_status({.connectionState = announcerOf<&NightjarModel::connectionStateChanged>(*this),
                .radioSettingsState = announcerOf<&NightjarModel::radioSettingsStateChanged>(*this),
                .errorMessage = announcerOf<&NightjarModel::errorMessageChanged>(*this)}),
      m_connection(platform.host, platform.preferences, m_status,
                   {.connectedPort = announcerOf<&NightjarModel::connectedPortChanged>(*this),
                    .availablePorts = announcerOf<&NightjarModel::availablePortsChanged>(*this),
                    .selectedPort = announcerOf<&NightjarModel::selectedPortChanged>(*this),
                    .localNodeID = announcerOf<&NightjarModel::localNodeIDChanged>(*this)}),
      m_baseNames(platform.preferences, announcerOf<&NightjarModel::knownBaseNamesChanged>(*this)),
      m_nodes(platform.text, announcerOf<&NightjarModel::nodesChanged>(*this)),
      m_history(announcerOf<&NightjarModel::historyChanged>(*this)),
      m_selectedNodeID(announcerOf<&NightjarModel::selectedNodeIDChanged>(*this)),
      m_guard(platform.preferences, platform.scheduler,
              {.radius = announcerOf<&NightjarModel::parkingRadiusChanged>(*this),
               .parkedPosition = announcerOf<&NightjarModel::parkedPositionChanged>(*this),
               .status = announcerOf<&NightjarModel::parkingStatusChanged>(*this),
               .profile = announcerOf<&NightjarModel::guardProfileChanged>(*this)}),
      m_conversation({.messages = announcerOf<&NightjarModel::messagesChanged>(*this),
                      .channels = announcerOf<&NightjarModel::channelsChanged>(*this),
                      .recipient = announcerOf<&NightjarModel::messageRecipientChanged>(*this),
                      .channel = announcerOf<&NightjarModel::messageChannelChanged>(*this)}),
      m_sender(*m_radio, platform.mainThread, platform.scheduler, m_messageStore, m_connection,
               m_conversation, m_status),
      m_radioSettings(*m_radio, platform.scheduler, m_connection, m_status,
                      announcerOf<&NightjarModel::loraConfigChanged>(*this)),
      m_selectedSettingsTab(announcerOf<&NightjarModel::selectedSettingsTabChanged>(*this),
                            SettingsTab::general) {
    loadStores();
}

NightjarModel::~NightjarModel() = default;

void NightjarModel::loadStores() {
    m_history.change([](std::vector<MeshPosition>& history) { history.reserve(roomForPositions); });

    // Both are asked before anything can be appended, so that no record comes back that is here already.
    const auto generation = m_connection.generation();
    m_positionStore.load(m_lifetime.broughtHome(m_platform.mainThread,
                                                [this, generation](const std::vector<MeshPosition>& kept) {
                                                    restoreHistory(kept);
                                                    settleBaseAtStart(generation);
                                                }));
    m_messageStore.load(
        m_lifetime.broughtHome(m_platform.mainThread, [this, generation](std::vector<MeshMessage> kept) {
            m_conversation.restore(std::move(kept));
            settleBaseAtStart(generation);
        }));
}

void NightjarModel::restoreHistory(const std::vector<MeshPosition>& kept) {
    if (kept.empty())
        return;
    m_history.change([&kept](std::vector<MeshPosition>& history) {
        // What came meanwhile is newer.
        history.insert(history.begin(), kept.begin(), kept.end());
    });
}

void NightjarModel::settleBaseAtStart(int generation) {
    constexpr int stores = 2;
    if (++m_storesLoaded < stores)
        return;

    refreshPorts();
    // Whoever connected or disconnected during the loading has decided already.
    if (generation == m_connection.generation()) {
        if (const auto port = m_connection.lastPort()) {
            connect(port);
        } else {
            m_connection.showNothingToReconnect();
        }
    }
    if (!m_folder) {
        setErrorMessage("Nightjar found no home folder. Messages, positions and settings will not be kept.");
    }
}

} // namespace nightjar
