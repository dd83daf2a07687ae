// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/BluetoothTable.h"

#include "app/headless/TableBuilder.h"
#include "core/bluetooth/BluetoothJson.h"
#include "core/json/Schema.h"

#include <array>
#include <expected>
#include <string>

namespace nightjar::json {

template <>
const Schema& schemaOf<DiscoveredTracker>() {
    static const std::array fields{
        field<&DiscoveredTracker::id>("id"),
        field<&DiscoveredTracker::name>("name"),
        field<&DiscoveredTracker::isMeshtastic>("isMeshtastic"),
        field<&DiscoveredTracker::rssi>("rssi"),
        field<&DiscoveredTracker::smoothedRSSI>("smoothedRSSI"),
        enumeration<&DiscoveredTracker::trend>("trend", bluetoothProximityTrendNames),
        enumeration<&DiscoveredTracker::band>("band", bluetoothProximityBandNames),
        field<&DiscoveredTracker::lastSeen>("lastSeen"),
        field<&DiscoveredTracker::sampleCount>("sampleCount"),
    };
    static const Schema schema{fields};
    return schema;
}

} // namespace nightjar::json

namespace nightjar::headless {
namespace {

using Manager = BluetoothTrackerManager;
using Refusal = std::expected<void, std::string>;

Refusal track(Manager& manager, const Uuid& id) {
    const auto* device = manager.deviceWith(id);
    if (!device)
        return std::unexpected("No device with the identifier " + id.text() + " was heard in this scan.");
    // The list may change while the manager carries this out.
    manager.track(DiscoveredTracker(*device));
    return {};
}

/// Carries out `act` on a device that is tracked.
template <class Act>
Refusal ifTracked(const Manager& manager, const Uuid& id, Act act) {
    if (!manager.trackedDeviceWith(id))
        return std::unexpected("No device with the identifier " + id.text() + " is tracked.");
    act();
    return {};
}

Refusal stopTracking(Manager& manager, const Uuid& id) {
    return ifTracked(manager, id, [&] { manager.stopTracking(id); });
}

Refusal rename(Manager& manager, const Uuid& id, const std::string& name) {
    return ifTracked(manager, id, [&] { manager.renameTrackedDevice(id, name); });
}

Refusal setLossAlert(Manager& manager, bool enabled, const Uuid& id) {
    return ifTracked(manager, id, [&] { manager.setLossAlert(enabled, id); });
}

Refusal setLossAlertDelay(Manager& manager, double delay, const Uuid& id) {
    return ifTracked(manager, id, [&] { manager.setLossAlertDelay(delay, id); });
}

} // namespace

ControllerTable bluetoothTable(BluetoothTrackerManager& manager) {
    using M = Manager;
    return TableBuilder("BluetoothTrackerManager", manager)
        .indexedList("devices", &M::devices, &M::deviceChanged, &M::devicesCleared)
        .published("state", &M::state, &M::stateChanged)
        .published("isScanning", &M::isScanning, &M::isScanningChanged)
        .published("trackedID", &M::trackedID, &M::trackedIDChanged)
        .published("isFinding", &M::isFinding, &M::isFindingChanged)
        .settable("finderSoundEnabled", &M::finderSoundEnabled, &M::setFinderSoundEnabled,
                  &M::finderSoundEnabledChanged)
        .list<ChangingRecords>("trackedDevices", &M::trackedDevices, &M::trackedDevicesChanged)
        .settable("errorMessage", &M::errorMessage, &M::setErrorMessage, &M::errorMessageChanged)
        .settable("iMessageAlertsEnabled", &M::iMessageAlertsEnabled, &M::setIMessageAlertsEnabled,
                  &M::iMessageAlertsEnabledChanged)
        .settable("iMessageRecipient", &M::iMessageRecipient, &M::setIMessageRecipient,
                  &M::iMessageRecipientChanged)
        .published("iMessageStatus", &M::iMessageStatus, &M::iMessageStatusChanged)
        .readable("trackedDevice", &M::trackedDevice)
        .operation("startScanning", &M::startScanning)
        .operation("stopScanning", &M::stopScanning)
        .operation("track", &track)
        .operation("stopTracking", &stopTracking)
        .operation("renameTrackedDevice", &rename)
        .operation("startFinding", &M::startFinding)
        .operation("stopFinding", &M::stopFinding)
        .operation("setLossAlert", &setLossAlert)
        .operation("setLossAlertDelay", &setLossAlertDelay)
        .operation("sendTestIMessage", &M::sendTestIMessage)
        .operation("updateIMessageStatus", &M::updateIMessageStatus)
        .build();
}

} // namespace nightjar::headless
