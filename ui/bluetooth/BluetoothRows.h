// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/bluetooth/BluetoothTrackerManager.h"
#include "ui/rows/Row.h"

#include <QString>

#include <optional>
#include <string>
#include <vector>

/// What the views tell of Bluetooth devices. Names come from the air. In the views a device goes by the text
/// of its identifier.
namespace nightjar {

/// A device as the views know it; the records are valid until the manager's lists change.
struct ShownBluetoothDevice {
    Uuid id;
    const TrackedBluetoothDevice* tracked = nullptr;
    const DiscoveredTracker* live = nullptr; ///< heard since the latest scan began
    /// It can be heard now. What was heard before a silence is history: it must not look like a device that
    /// is here.
    bool isHeard = false;

    [[nodiscard]] QString name() const;
    /// Of the computer, when it last heard the device.
    [[nodiscard]] bool hasLocation() const { return tracked && tracked->latitude && tracked->longitude; }
};

/// How long a device may be silent and still counts as heard; the finder is stricter.
inline constexpr Seconds longestPause{30};

/// Absent when it is neither tracked nor was heard.
[[nodiscard]] std::optional<ShownBluetoothDevice> shownBluetoothDevice(const BluetoothTrackerManager& manager,
                                                                       const std::string& id, Date now);
[[nodiscard]] bool isFinding(const BluetoothTrackerManager& manager, const Uuid& id);

/// `liveDevice` is null for a device that is not heard; `lastSeen` is a relative time.
[[nodiscard]] Row trackedBluetoothDeviceRow(const TrackedBluetoothDevice& device,
                                            const DiscoveredTracker* liveDevice, const QString& lastSeen);
[[nodiscard]] Row bluetoothDeviceRow(const DiscoveredTracker& device, bool isFinding);

/// Of a crowd only its newest are listed.
inline constexpr std::size_t mostNearbyRows = 5000;
/// The sidebar: tracked devices, and the others in the order first heard.
[[nodiscard]] std::vector<RowSection> bluetoothSections(const BluetoothTrackerManager& manager);
/// The selection stays while its device is tracked or was heard in this scan; else it is the first tracked
/// one, or none (empty).
[[nodiscard]] std::string selectFirstTrackedBluetoothDeviceIfNeeded(const std::string& selectedID,
                                                                    const BluetoothTrackerManager& manager);

/// "-67 dBm".
[[nodiscard]] QString strengthText(double rssi);
[[nodiscard]] QString coordinateText(double degrees);
[[nodiscard]] QString lossAlertStatus(LossAlertState state);

} // namespace nightjar
