// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/ObservableController.h"
#include "app/bluetooth/DiscoveredTracker.h"
#include "core/base/Uuid.h"
#include "core/bluetooth/TrackedBluetoothDevice.h"
#include "platform/PlatformServices.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace nightjar {

/// The controller of the Bluetooth side: the scan, the devices heard, the devices tracked, the finder and the
/// alerts of devices that are no longer heard. Main thread. Operations return at once and report through the
/// published fields; they may be called from within any signal. It keeps the order of the steps; its parts do
/// them and know no more than their own step.
class BluetoothTrackerManager : public ObservableController {
    Q_OBJECT
    Q_PROPERTY(nightjar::DiscoveredTrackers devices READ devices NOTIFY devicesChanged)
    Q_PROPERTY(std::string state READ state NOTIFY stateChanged)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY isScanningChanged)
    Q_PROPERTY(std::optional<nightjar::Uuid> trackedID READ trackedID NOTIFY trackedIDChanged)
    Q_PROPERTY(bool isFinding READ isFinding NOTIFY isFindingChanged)
    Q_PROPERTY(bool finderSoundEnabled READ finderSoundEnabled WRITE setFinderSoundEnabled NOTIFY
                   finderSoundEnabledChanged)
    Q_PROPERTY(std::vector<nightjar::TrackedBluetoothDevice> trackedDevices READ trackedDevices NOTIFY
                   trackedDevicesChanged)
    Q_PROPERTY(std::optional<std::string> errorMessage READ errorMessage WRITE setErrorMessage NOTIFY
                   errorMessageChanged)
    Q_PROPERTY(bool iMessageAlertsEnabled READ iMessageAlertsEnabled WRITE setIMessageAlertsEnabled NOTIFY
                   iMessageAlertsEnabledChanged)
    Q_PROPERTY(std::string iMessageRecipient READ iMessageRecipient WRITE setIMessageRecipient NOTIFY
                   iMessageRecipientChanged)
    Q_PROPERTY(std::string iMessageStatus READ iMessageStatus NOTIFY iMessageStatusChanged)

public:
    /// Loads the tracked devices; nothing is scanned yet.
    explicit BluetoothTrackerManager(const PlatformServices& platform);
    ~BluetoothTrackerManager() override;

    /// In the order first heard; a reference to one is valid until the list is cleared.
    [[nodiscard]] const DiscoveredTrackers& devices() const;
    [[nodiscard]] const std::string& state() const;
    [[nodiscard]] bool isScanning() const;
    [[nodiscard]] const std::optional<Uuid>& trackedID() const;
    [[nodiscard]] bool isFinding() const;
    [[nodiscard]] bool finderSoundEnabled() const;
    [[nodiscard]] const std::vector<TrackedBluetoothDevice>& trackedDevices() const;
    [[nodiscard]] const std::optional<std::string>& errorMessage() const;
    [[nodiscard]] bool iMessageAlertsEnabled() const;
    [[nodiscard]] const std::string& iMessageRecipient() const;
    [[nodiscard]] const std::string& iMessageStatus() const;

    void setFinderSoundEnabled(bool enabled);
    void setErrorMessage(const std::optional<std::string>& sentence);
    /// The two are kept at once; `iMessageStatus` follows with `updateIMessageStatus`.
    void setIMessageAlertsEnabled(bool enabled);
    void setIMessageRecipient(const std::string& recipient);

    /// The device of this scan; null when it was not heard. Does not search the list.
    [[nodiscard]] const DiscoveredTracker* deviceWith(const Uuid& id) const;
    /// The live record of the finder's device.
    [[nodiscard]] std::optional<DiscoveredTracker> trackedDevice() const;
    /// Null when the device is not tracked.
    [[nodiscard]] const TrackedBluetoothDevice* trackedDeviceWith(const Uuid& id) const;
    /// The file of the tracked devices; absent when the user has no home.
    [[nodiscard]] const std::optional<std::filesystem::path>& trackedDevicesURL() const;

    void startScanning();
    void stopScanning();

    void track(const DiscoveredTracker& device);
    void stopTracking(const Uuid& id);
    void renameTrackedDevice(const Uuid& id, const std::string& name);

    void startFinding(const Uuid& id);
    /// Ends the scan too.
    void stopFinding();

    void setLossAlert(bool enabled, const Uuid& id);
    /// In seconds, at least 15.
    void setLossAlertDelay(double delay, const Uuid& id);
    void sendTestIMessage();
    void updateIMessageStatus();

Q_SIGNALS:
    void devicesChanged();
    void stateChanged();
    void isScanningChanged();
    void trackedIDChanged();
    void isFindingChanged();
    void finderSoundEnabledChanged();
    void trackedDevicesChanged();
    void errorMessageChanged();
    void iMessageAlertsEnabledChanged();
    void iMessageRecipientChanged();
    void iMessageStatusChanged();

    /// The device at `index` of `devices` is new, or its record is. Comes before `devicesChanged`.
    void deviceChanged(std::size_t index);
    /// `devices` is empty again. Comes before `devicesChanged`.
    void devicesCleared();
    /// Ages that views show are to be computed afresh: every 5 s while scanning, every 0.25 s in the finder.
    void timePassed();

private:
    PlatformServices m_platform;
    std::optional<std::filesystem::path> m_trackedDevicesURL;
    Published<DiscoveredTrackers> m_devices;
    Published<std::string> m_state;
    Published<bool> m_isScanning;
    Published<std::optional<Uuid>> m_trackedID;
    Published<bool> m_isFinding;
    Published<bool> m_finderSoundEnabled;
    Published<std::vector<TrackedBluetoothDevice>> m_trackedDevices;
    Published<std::optional<std::string>> m_errorMessage;
    Published<bool> m_iMessageAlertsEnabled;
    Published<std::string> m_iMessageRecipient;
    Published<std::string> m_iMessageStatus;
};

} // namespace nightjar
