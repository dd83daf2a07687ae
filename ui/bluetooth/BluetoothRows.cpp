// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/bluetooth/BluetoothRows.h"

#include "ui/bluetooth/FinderReading.h"
#include "ui/text/ShownText.h"

#include <algorithm>
#include <cmath>

namespace nightjar {

namespace {

const QString& radioSymbol() {
    static const QString symbol = QStringLiteral("dot.radiowaves.left.and.right");
    return symbol;
}

bool isHeardNow(const BluetoothTrackerManager& manager, const ShownBluetoothDevice& device, Date now) {
    const auto pause = isFinding(manager, device.id) ? signalLostAfter : longestPause;
    if (!device.live || !manager.isScanning() || now - device.live->lastSeen > pause)
        return false;
    return !device.tracked || manager.lossAlertState(*device.tracked) != LossAlertState::alerted;
}

} // namespace

QString ShownBluetoothDevice::name() const {
    return shownLine(tracked ? tracked->name : live->name);
}

std::optional<ShownBluetoothDevice> shownBluetoothDevice(const BluetoothTrackerManager& manager,
                                                         const std::string& id, Date now) {
    const auto uuid = Uuid::fromText(id);
    if (!uuid)
        return std::nullopt;
    ShownBluetoothDevice device{
        .id = *uuid, .tracked = manager.trackedDeviceWith(*uuid), .live = manager.deviceWith(*uuid)};
    if (!device.tracked && !device.live)
        return std::nullopt;
    device.isHeard = isHeardNow(manager, device, now);
    return device;
}

bool isFinding(const BluetoothTrackerManager& manager, const Uuid& id) {
    return manager.isFinding() && manager.trackedID() == id;
}

Row trackedBluetoothDeviceRow(const TrackedBluetoothDevice& device, const DiscoveredTracker* liveDevice,
                              const QString& lastSeen) {
    Row row{.symbol = radioSymbol(),
            .tint = liveDevice ? Tint::green : Tint::secondary,
            .title = shownLine(device.name),
            .caption = liveDevice ? QStringLiteral("Nearby · ") + strengthText(liveDevice->smoothedRSSI)
                                  : QStringLiteral("Last seen ") + lastSeen};
    if (device.latitude && device.longitude)
        row.badges.push_back(
            {QStringLiteral("location.fill"), Tint::blue, QStringLiteral("Last-seen location recorded")});
    if (device.lossAlertEnabled)
        row.badges.push_back(
            {QStringLiteral("bell.badge.fill"), Tint::orange, QStringLiteral("Signal-loss alert enabled")});
    return row;
}

Row bluetoothDeviceRow(const DiscoveredTracker& device, bool isFinding) {
    const auto kind = device.isMeshtastic ? QStringLiteral("Meshtastic") : QStringLiteral("Bluetooth LE");
    Row row{.symbol = radioSymbol(),
            .tint = isFinding ? Tint::green : Tint::blue,
            .title = shownLine(device.name),
            .caption = kind + QStringLiteral(" · ") + strengthText(device.smoothedRSSI)};
    if (isFinding)
        row.badges.push_back({QStringLiteral("scope"), Tint::green, QStringLiteral("Currently finding")});
    return row;
}

std::vector<RowSection> bluetoothSections(const BluetoothTrackerManager& manager) {
    RowSection tracked{QStringLiteral("Tracked"), {}};
    for (const auto& device : manager.trackedDevices())
        tracked.ids.push_back(device.id.text());

    RowSection nearby{QStringLiteral("Nearby"), {}};
    const auto& devices = manager.devices();
    for (auto device = devices.rbegin(); device != devices.rend(); ++device) {
        if (nearby.ids.size() == mostNearbyRows)
            break;
        if (!manager.trackedDeviceWith(device->id))
            nearby.ids.push_back(device->id.text());
    }
    std::ranges::reverse(nearby.ids);
    return {std::move(tracked), std::move(nearby)};
}

std::string selectFirstTrackedBluetoothDeviceIfNeeded(const std::string& selectedID,
                                                      const BluetoothTrackerManager& manager) {
    const auto id = Uuid::fromText(selectedID);
    if (id && (manager.trackedDeviceWith(*id) || manager.deviceWith(*id)))
        return selectedID;
    const auto& tracked = manager.trackedDevices();
    return tracked.empty() ? std::string() : tracked.front().id.text();
}

QString strengthText(double rssi) {
    return QStringLiteral("%1 dBm").arg(std::lround(rssi));
}

QString coordinateText(double degrees) {
    return QString::number(degrees, 'f', 5);
}

QString lossAlertStatus(LossAlertState state) {
    switch (state) {
    case LossAlertState::off:
        return QStringLiteral("Alert off");
    case LossAlertState::blind:
        return QStringLiteral("Not scanning · alarm off");
    case LossAlertState::waiting:
        return QStringLiteral("Waiting to hear this device");
    case LossAlertState::armed:
        return QStringLiteral("Alarm armed");
    case LossAlertState::alerted:
        return QStringLiteral("Signal lost · alert sent");
    }
    return {};
}

} // namespace nightjar
