// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/Lifetime.h"
#include "app/ObservableController.h"
#include "app/SettingsTab.h"
#include "app/bluetooth/BluetoothTrackerManager.h"
#include "app/mesh/BaseConnection.h"
#include "app/mesh/BaseNames.h"
#include "app/mesh/Conversation.h"
#include "app/mesh/MeshStatus.h"
#include "app/mesh/MessageSender.h"
#include "app/mesh/MovementGuard.h"
#include "app/mesh/NodeTable.h"
#include "app/mesh/RadioSettingsFlow.h"
#include "app/network/LocalNetworkBrowser.h"
#include "core/bridge/MeshtasticBridge.h"
#include "core/mesh/MeshMessage.h"
#include "core/mesh/MeshNode.h"
#include "core/mesh/MeshPosition.h"
#include "core/mesh/RecordStore.h"
#include "platform/PlatformServices.h"
#include "radio/RadioLink.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nightjar {

/// The controller of the mesh side and the root that the user interface observes: the connection to the base
/// radio, the nodes, the conversation, the position history, the guard and the radio's settings. Main thread.
/// Operations return at once and report through the published fields. It keeps the order of the steps; its
/// parts do them and know no more than their own step.
class NightjarModel : public ObservableController {
    Q_OBJECT
    Q_PROPERTY(std::vector<nightjar::MeshNode> nodes READ nodes NOTIFY nodesChanged)
    Q_PROPERTY(std::vector<nightjar::MeshPosition> history READ history NOTIFY historyChanged)
    Q_PROPERTY(std::string connectionState READ connectionState NOTIFY connectionStateChanged)
    Q_PROPERTY(std::optional<std::string> connectedPort READ connectedPort NOTIFY connectedPortChanged)
    Q_PROPERTY(std::vector<std::string> availablePorts READ availablePorts NOTIFY availablePortsChanged)
    Q_PROPERTY(
        std::map<std::string, std::string> knownBaseNames READ knownBaseNames NOTIFY knownBaseNamesChanged)
    Q_PROPERTY(std::string selectedPort READ selectedPort WRITE setSelectedPort NOTIFY selectedPortChanged)
    Q_PROPERTY(std::optional<std::uint32_t> selectedNodeID READ selectedNodeID WRITE setSelectedNodeID NOTIFY
                   selectedNodeIDChanged)
    Q_PROPERTY(std::optional<std::string> errorMessage READ errorMessage WRITE setErrorMessage NOTIFY
                   errorMessageChanged)
    Q_PROPERTY(double parkingRadius READ parkingRadius WRITE setParkingRadius NOTIFY parkingRadiusChanged)
    Q_PROPERTY(
        std::optional<nightjar::MeshPosition> parkedPosition READ parkedPosition NOTIFY parkedPositionChanged)
    Q_PROPERTY(std::string parkingStatus READ parkingStatus NOTIFY parkingStatusChanged)
    Q_PROPERTY(nightjar::GuardProfile guardProfile READ guardProfile WRITE setGuardProfile NOTIFY
                   guardProfileChanged)
    Q_PROPERTY(std::optional<std::uint32_t> localNodeID READ localNodeID NOTIFY localNodeIDChanged)
    Q_PROPERTY(std::vector<nightjar::MeshMessage> messages READ messages NOTIFY messagesChanged)
    Q_PROPERTY(std::map<std::uint32_t, std::string> channels READ channels NOTIFY channelsChanged)
    Q_PROPERTY(std::optional<std::uint32_t> messageRecipient READ messageRecipient WRITE setMessageRecipient
                   NOTIFY messageRecipientChanged)
    Q_PROPERTY(
        std::uint32_t messageChannel READ messageChannel WRITE setMessageChannel NOTIFY messageChannelChanged)
    Q_PROPERTY(
        std::optional<nightjar::MeshtasticRadioSettings> loraConfig READ loraConfig NOTIFY loraConfigChanged)
    Q_PROPERTY(std::string radioSettingsState READ radioSettingsState NOTIFY radioSettingsStateChanged)
    Q_PROPERTY(nightjar::SettingsTab selectedSettingsTab READ selectedSettingsTab WRITE setSelectedSettingsTab
                   NOTIFY selectedSettingsTabChanged)

public:
    /// Restores what was kept and starts to load the stores and to reconnect the last radio.
    NightjarModel(const PlatformServices& platform, std::unique_ptr<RadioLink> radio);
    ~NightjarModel() override;

    /// In node order: the guarded node first, the others by long name. Sorted when looked at.
    [[nodiscard]] const std::vector<MeshNode>& nodes() const { return m_nodes.sorted(guardedNodeID()); }
    [[nodiscard]] const std::vector<MeshPosition>& history() const { return m_history.get(); }
    [[nodiscard]] const std::string& connectionState() const { return m_status.connectionState.get(); }
    [[nodiscard]] const std::optional<std::string>& connectedPort() const {
        return m_connection.connectedPort();
    }
    [[nodiscard]] const std::vector<std::string>& availablePorts() const {
        return m_connection.availablePorts();
    }
    [[nodiscard]] const std::map<std::string, std::string>& knownBaseNames() const {
        return m_baseNames.all();
    }
    [[nodiscard]] const std::string& selectedPort() const { return m_connection.selectedPort(); }
    [[nodiscard]] std::optional<std::uint32_t> selectedNodeID() const { return m_selectedNodeID.get(); }
    [[nodiscard]] const std::optional<std::string>& errorMessage() const {
        return m_status.errorMessage.get();
    }
    [[nodiscard]] double parkingRadius() const { return m_guard.radius(); }
    [[nodiscard]] const std::optional<MeshPosition>& parkedPosition() const {
        return m_guard.parkedPosition();
    }
    [[nodiscard]] const std::string& parkingStatus() const { return m_guard.status(); }
    [[nodiscard]] GuardProfile guardProfile() const { return m_guard.profile(); }
    [[nodiscard]] std::optional<std::uint32_t> localNodeID() const { return m_connection.localNodeID(); }
    [[nodiscard]] const std::vector<MeshMessage>& messages() const { return m_conversation.messages(); }
    [[nodiscard]] const std::map<std::uint32_t, std::string>& channels() const {
        return m_conversation.channels();
    }
    [[nodiscard]] std::optional<std::uint32_t> messageRecipient() const { return m_conversation.recipient(); }
    [[nodiscard]] std::uint32_t messageChannel() const { return m_conversation.channel(); }
    [[nodiscard]] const std::optional<MeshtasticRadioSettings>& loraConfig() const {
        return m_radioSettings.settings();
    }
    [[nodiscard]] const std::string& radioSettingsState() const { return m_status.radioSettingsState.get(); }
    [[nodiscard]] SettingsTab selectedSettingsTab() const { return m_selectedSettingsTab.get(); }

    void setSelectedPort(const std::string& port) { m_connection.selectPort(port); }
    void setSelectedNodeID(std::optional<std::uint32_t> number) { m_selectedNodeID.set(number); }
    void setErrorMessage(const std::optional<std::string>& sentence);
    void setParkingRadius(double metres) { m_guard.setRadius(metres); }
    void setGuardProfile(GuardProfile profile) { m_guard.setProfile(profile); }
    void setMessageRecipient(std::optional<std::uint32_t> number) { m_conversation.setRecipient(number); }
    void setMessageChannel(std::uint32_t channel) { m_conversation.setChannel(channel); }
    void setSelectedSettingsTab(SettingsTab tab) { m_selectedSettingsTab.set(tab); }

    /// The other watches that this controller brings with it; they live as long as this one.
    [[nodiscard]] BluetoothTrackerManager& bluetoothTrackers() { return m_bluetoothTrackers; }
    [[nodiscard]] LocalNetworkBrowser& localNetwork() { return m_localNetwork; }

    [[nodiscard]] std::optional<std::uint32_t> guardedNodeID() const { return m_guard.guardedNodeID(); }
    [[nodiscard]] std::vector<MeshNode> directlyHeardNodes() const;
    [[nodiscard]] std::vector<MeshNode> otherMeshNodes() const;
    [[nodiscard]] std::string displayName(std::uint32_t number) const { return m_nodes.displayName(number); }
    /// "Installed" or "Not installed".
    [[nodiscard]] std::string bridgeStatus() const;

    void refreshPorts();
    /// The given port, or the selected one.
    void connect(const std::optional<std::string>& port = {});
    void disconnect();
    void sendMessage(const std::string& text);

    void setGuarded(const MeshNode& node);
    void markGuardedPosition();
    void clearParking();
    void clearGuardedDevice();

    void requestRadioSettings();
    void applyRadioSettings(const MeshtasticRadioSettings& settings);

Q_SIGNALS:
    void nodesChanged();
    void historyChanged();
    void connectionStateChanged();
    void connectedPortChanged();
    void availablePortsChanged();
    void knownBaseNamesChanged();
    void selectedPortChanged();
    void selectedNodeIDChanged();
    void errorMessageChanged();
    void parkingRadiusChanged();
    void parkedPositionChanged();
    void parkingStatusChanged();
    void guardProfileChanged();
    void localNodeIDChanged();
    void messagesChanged();
    void channelsChanged();
    void messageRecipientChanged();
    void messageChannelChanged();
    void loraConfigChanged();
    void radioSettingsStateChanged();
    void selectedSettingsTabChanged();

private:
    void loadStores();
    void restoreHistory(const std::vector<MeshPosition>& kept);
    void settleBaseAtStart(int generation);

    void finishConnect(const std::expected<std::string, MeshRadioError>& port);
    void hear(const MeshtasticBridgeResponse& response, int link);
    void hearFormer(const MeshtasticBridgeResponse& response);
    void handle(const MeshtasticBridgeResponse& response);
    void handleDisconnected(const std::optional<std::string>& status);
    void handleLost(const MeshRadioError& error);
    void clearBaseState();

    void upsert(const MeshNode& node);
    void addPosition(const MeshPosition& position, std::uint32_t number);
    void receive(const MeshMessage& message);
    void notifyMessage(const MeshMessage& message);
    void rememberBaseNameIfAvailable();
    [[nodiscard]] std::vector<MeshNode> remoteNodes(bool directlyHeard) const;

    PlatformServices m_platform;
    BluetoothTrackerManager m_bluetoothTrackers;
    LocalNetworkBrowser m_localNetwork;
    std::unique_ptr<RadioLink> m_radio;
    std::optional<std::filesystem::path> m_folder; ///< absent when the user has no home
    PositionStore m_positionStore;
    MessageStore m_messageStore;

    MeshStatus m_status;
    BaseConnection m_connection;
    BaseNames m_baseNames;
    NodeTable m_nodes;
    Published<std::vector<MeshPosition>> m_history;
    Published<std::optional<std::uint32_t>> m_selectedNodeID;
    MovementGuard m_guard;
    Conversation m_conversation;
    MessageSender m_sender;
    RadioSettingsFlow m_radioSettings;
    Published<SettingsTab> m_selectedSettingsTab;
    int m_storesLoaded = 0;
    bool m_tellsOfNoRadio = false; ///< the status lines say why there is no radio
    Lifetime m_lifetime;
};

} // namespace nightjar
