// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/MeshTable.h"

#include "app/headless/TableBuilder.h"
#include "app/mesh/NightjarModel.h"
#include "core/bridge/BridgeJson.h"
#include "core/mesh/MeshJson.h"

#include <algorithm>
#include <cstdint>
#include <expected>
#include <string>

namespace nightjar::headless {

template <>
struct CaseNames<GuardProfile> {
    static constexpr std::span<const std::string_view> names = guardProfileNames;
};
template <>
struct CaseNames<SettingsTab> {
    static constexpr std::span<const std::string_view> names = settingsTabNames;
};

namespace {

using Refusal = std::expected<void, std::string>;

Refusal setGuarded(NightjarModel& model, std::uint32_t number) {
    const auto found = std::ranges::find(model.nodes(), number, &MeshNode::number);
    if (found == model.nodes().end()) {
        return std::unexpected("There is no node with the number " + std::to_string(number) + '.');
    }
    // The model may sort its list while it carries this out.
    model.setGuarded(MeshNode(*found));
    return {};
}

} // namespace

ControllerTable meshTable(NightjarModel& model) {
    using M = NightjarModel;
    return TableBuilder("NightjarModel", model)
        .list<ChangingRecords>("nodes", &M::nodes, &M::nodesChanged)
        .list<AppendedRecords>("history", &M::history, &M::historyChanged)
        .published("connectionState", &M::connectionState, &M::connectionStateChanged)
        .published("connectedPort", &M::connectedPort, &M::connectedPortChanged)
        .published("availablePorts", &M::availablePorts, &M::availablePortsChanged)
        .published("knownBaseNames", &M::knownBaseNames, &M::knownBaseNamesChanged)
        .settable("selectedPort", &M::selectedPort, &M::setSelectedPort, &M::selectedPortChanged)
        .settable("selectedNodeID", &M::selectedNodeID, &M::setSelectedNodeID, &M::selectedNodeIDChanged)
        .settable("errorMessage", &M::errorMessage, &M::setErrorMessage, &M::errorMessageChanged)
        .settable("parkingRadius", &M::parkingRadius, &M::setParkingRadius, &M::parkingRadiusChanged)
        .published("parkedPosition", &M::parkedPosition, &M::parkedPositionChanged)
        .published("parkingStatus", &M::parkingStatus, &M::parkingStatusChanged)
        .settable("guardProfile", &M::guardProfile, &M::setGuardProfile, &M::guardProfileChanged)
        .published("localNodeID", &M::localNodeID, &M::localNodeIDChanged)
        .list<AppendedRecords>("messages", &M::messages, &M::messagesChanged)
        .published("channels", &M::channels, &M::channelsChanged)
        .settable("messageRecipient", &M::messageRecipient, &M::setMessageRecipient,
                  &M::messageRecipientChanged)
        .settable("messageChannel", &M::messageChannel, &M::setMessageChannel, &M::messageChannelChanged)
        .published("loraConfig", &M::loraConfig, &M::loraConfigChanged)
        .published("radioSettingsState", &M::radioSettingsState, &M::radioSettingsStateChanged)
        .settable("selectedSettingsTab", &M::selectedSettingsTab, &M::setSelectedSettingsTab,
                  &M::selectedSettingsTabChanged)
        .readable("directlyHeardNodes", &M::directlyHeardNodes)
        .readable("otherMeshNodes", &M::otherMeshNodes)
        .readable("guardedNodeID", &M::guardedNodeID)
        .readable("bridgeStatus", &M::bridgeStatus)
        .operation("refreshPorts", &M::refreshPorts)
        .operation("connect", &M::connect)
        .operation("disconnect", &M::disconnect)
        .operation("sendMessage", &M::sendMessage)
        .operation("displayName", &M::displayName)
        .operation("setGuarded", &setGuarded)
        .operation("markGuardedPosition", &M::markGuardedPosition)
        .operation("clearParking", &M::clearParking)
        .operation("clearGuardedDevice", &M::clearGuardedDevice)
        .operation("requestRadioSettings", &M::requestRadioSettings)
        .operation("applyRadioSettings", &M::applyRadioSettings)
        .build();
}

} // namespace nightjar::headless
