// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/ObservableController.h"
#include "app/SettingsTab.h"
#include "core/bridge/MeshtasticBridge.h"
#include "core/mesh/GuardProfile.h"
#include "core/mesh/MeshMessage.h"
#include "core/mesh/MeshNode.h"
#include "core/mesh/MeshPosition.h"
#include "platform/PlatformServices.h"
#include "radio/RadioLink.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nightjar {

/// The controller of the mesh side and the root that the user interface observes: the connection to the base radio, the
/// nodes, the conversation, the position history, the guard and the radio's settings. Main thread. Operations return at
/// once and report through the published fields.
class NightjarModel : public ObservableController {
    Q_OBJECT
    Q_PROPERTY(std::vector<nightjar::MeshNode> nodes READ nodes NOTIFY nodesChanged)
    Q_PROPERTY(std::vector<nightjar::MeshPosition> history READ history NOTIFY historyChanged)
    Q_PROPERTY(std::string connectionState READ connectionState NOTIFY connectionStateChanged)
    Q_PROPERTY(std::optional<std::string> connectedPort READ connectedPort NOTIFY connectedPortChanged)
    Q_PROPERTY(std::vector<std::string> availablePorts READ availablePorts NOTIFY availablePortsChanged)
    Q_PROPERTY(std::map<std::string, std::string> knownBaseNames READ knownBaseNames NOTIFY knownBaseNamesChanged)
    Q_PROPERTY(std::string selectedPort READ selectedPort WRITE setSelectedPort NOTIFY selectedPortChanged)
    Q_PROPERTY(std::optional<std::uint32_t> selectedNodeID READ selectedNodeID WRITE setSelectedNodeID NOTIFY
                   selectedNodeIDChanged)
    Q_PROPERTY(std::optional<std::string> errorMessage READ errorMessage WRITE setErrorMessage NOTIFY
                   errorMessageChanged)
    Q_PROPERTY(double parkingRadius READ parkingRadius WRITE setParkingRadius NOTIFY parkingRadiusChanged)
    Q_PROPERTY(std::optional<nightjar::MeshPosition> parkedPosition READ parkedPosition NOTIFY parkedPositionChanged)
    Q_PROPERTY(std::string parkingStatus READ parkingStatus NOTIFY parkingStatusChanged)
    Q_PROPERTY(nightjar::GuardProfile guardProfile READ guardProfile WRITE setGuardProfile NOTIFY guardProfileChanged)
    Q_PROPERTY(std::optional<std::uint32_t> localNodeID READ localNodeID NOTIFY localNodeIDChanged)
    Q_PROPERTY(std::vector<nightjar::MeshMessage> messages READ messages NOTIFY messagesChanged)
    Q_PROPERTY(std::map<std::uint32_t, std::string> channels READ channels NOTIFY channelsChanged)
    Q_PROPERTY(std::optional<std::uint32_t> messageRecipient READ messageRecipient WRITE setMessageRecipient NOTIFY
                   messageRecipientChanged)
    Q_PROPERTY(std::uint32_t messageChannel READ messageChannel WRITE setMessageChannel NOTIFY messageChannelChanged)
    Q_PROPERTY(std::optional<nightjar::MeshtasticRadioSettings> loraConfig READ loraConfig NOTIFY loraConfigChanged)
    Q_PROPERTY(std::string radioSettingsState READ radioSettingsState NOTIFY radioSettingsStateChanged)
    Q_PROPERTY(nightjar::SettingsTab selectedSettingsTab READ selectedSettingsTab WRITE setSelectedSettingsTab NOTIFY
                   selectedSettingsTabChanged)

public:
    /// Restores what was kept and starts to load the stores and to reconnect the last radio.
    NightjarModel(const PlatformServices& platform, std::unique_ptr<RadioLink> radio);
    ~NightjarModel() override;

    /// In node order: the guarded node first, the others by long name. Sorted when looked at.
    [[nodiscard]] const std::vector<MeshNode>& nodes() const;
    [[nodiscard]] const std::vector<MeshPosition>& history() const;
    [[nodiscard]] const std::string& connectionState() const;
    [[nodiscard]] const std::optional<std::string>& connectedPort() const;
    [[nodiscard]] const std::vector<std::string>& availablePorts() const;
    [[nodiscard]] const std::map<std::string, std::string>& knownBaseNames() const;
    [[nodiscard]] const std::string& selectedPort() const;
    [[nodiscard]] std::optional<std::uint32_t> selectedNodeID() const;
    [[nodiscard]] const std::optional<std::string>& errorMessage() const;
    [[nodiscard]] double parkingRadius() const;
    [[nodiscard]] const std::optional<MeshPosition>& parkedPosition() const;
    [[nodiscard]] const std::string& parkingStatus() const;
    [[nodiscard]] GuardProfile guardProfile() const;
    [[nodiscard]] std::optional<std::uint32_t> localNodeID() const;
    [[nodiscard]] const std::vector<MeshMessage>& messages() const;
    [[nodiscard]] const std::map<std::uint32_t, std::string>& channels() const;
    [[nodiscard]] std::optional<std::uint32_t> messageRecipient() const;
    [[nodiscard]] std::uint32_t messageChannel() const;
    [[nodiscard]] const std::optional<MeshtasticRadioSettings>& loraConfig() const;
    [[nodiscard]] const std::string& radioSettingsState() const;
    [[nodiscard]] SettingsTab selectedSettingsTab() const;

    void setSelectedPort(const std::string& port);
    void setSelectedNodeID(std::optional<std::uint32_t> number);
    void setErrorMessage(const std::optional<std::string>& sentence);
    void setParkingRadius(double metres);
    void setGuardProfile(GuardProfile profile);
    void setMessageRecipient(std::optional<std::uint32_t> number);
    void setMessageChannel(std::uint32_t channel);
    void setSelectedSettingsTab(SettingsTab tab);

    [[nodiscard]] std::optional<std::uint32_t> guardedNodeID() const;
    [[nodiscard]] std::vector<MeshNode> directlyHeardNodes() const;
    [[nodiscard]] std::vector<MeshNode> otherMeshNodes() const;
    [[nodiscard]] std::string displayName(std::uint32_t number) const;
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
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};

} // namespace nightjar
