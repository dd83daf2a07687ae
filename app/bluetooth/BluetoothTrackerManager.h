// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/ObservableController.h"
#include "app/bluetooth/BluetoothStatus.h"
#include "app/bluetooth/ComputerLocation.h"
#include "app/bluetooth/DiscoveredDevices.h"
#include "app/bluetooth/DiscoveredTracker.h"
#include "app/bluetooth/LossAlertDelivery.h"
#include "app/bluetooth/LossAlertMonitor.h"
#include "app/bluetooth/ProximityFinder.h"
#include "app/bluetooth/ScanSession.h"
#include "app/bluetooth/TrackedDevices.h"
#include "core/base/Uuid.h"
#include "core/bluetooth/TrackedBluetoothDevice.h"
#include "core/bluetooth/TrackedDevicesFile.h"
#include "platform/PlatformServices.h"

#include <chrono>
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
    [[nodiscard]] const DiscoveredTrackers& devices() const { return m_devices.list(); }
    [[nodiscard]] const std::string& state() const { return m_status.state(); }
    [[nodiscard]] bool isScanning() const { return m_scan.isScanning(); }
    [[nodiscard]] const std::optional<Uuid>& trackedID() const { return m_finder.trackedID(); }
    [[nodiscard]] bool isFinding() const { return m_finder.isFinding(); }
    [[nodiscard]] bool finderSoundEnabled() const { return m_finder.isSoundEnabled(); }
    [[nodiscard]] const std::vector<TrackedBluetoothDevice>& trackedDevices() const {
        return m_tracked.list();
    }
    [[nodiscard]] const std::optional<std::string>& errorMessage() const {
        return m_status.errorMessage.get();
    }
    [[nodiscard]] bool iMessageAlertsEnabled() const { return m_delivery.isMessagesEnabled(); }
    [[nodiscard]] const std::string& iMessageRecipient() const { return m_delivery.recipient(); }
    [[nodiscard]] const std::string& iMessageStatus() const { return m_delivery.status(); }

    void setFinderSoundEnabled(bool enabled) { m_finder.setSoundEnabled(enabled); }
    void setErrorMessage(const std::optional<std::string>& sentence);
    /// The two are kept at once; `iMessageStatus` follows with `updateIMessageStatus`.
    void setIMessageAlertsEnabled(bool enabled) { m_delivery.setMessagesEnabled(enabled); }
    void setIMessageRecipient(const std::string& recipient) { m_delivery.setRecipient(recipient); }

    /// The device of this scan; null when it was not heard. Does not search the list.
    [[nodiscard]] const DiscoveredTracker* deviceWith(const Uuid& id) const { return m_devices.find(id); }
    /// The live record of the finder's device.
    [[nodiscard]] std::optional<DiscoveredTracker> trackedDevice() const;
    /// Null when the device is not tracked. Does not search the list.
    [[nodiscard]] const TrackedBluetoothDevice* trackedDeviceWith(const Uuid& id) const {
        return m_tracked.find(id);
    }
    [[nodiscard]] LossAlertState lossAlertState(const TrackedBluetoothDevice& device) const {
        return m_losses.stateOf(device, isMonitoring());
    }
    /// The file of the tracked devices; absent when the user has no home.
    [[nodiscard]] const std::optional<std::filesystem::path>& trackedDevicesURL() const {
        return m_file.path();
    }

    void startScanning();
    void stopScanning();

    void track(DiscoveredTracker device);
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
    void listen();
    void centralManagerDidUpdateState();
    void didDiscover(const BluetoothAdvertisement& advertisement);
    void macDidWake();
    void didFailWithError(const LocationError& error);

    [[nodiscard]] bool isPoweredOn() const;
    /// Whether silence is looked for: the finder alone does not.
    [[nodiscard]] bool isMonitoring() const;
    void resumeScan();
    void clearDevices();
    void hearTracked(const Uuid& id, std::int32_t rssi, SteadyTime now, Date date);
    void showHeard(const Uuid& id, std::int32_t rssi);
    void armIfHeardJustNow(const Uuid& id);

    void startScanRefreshTimer();
    void stopScanRefreshTimer();
    void scanRefresh();
    void checkLossAlerts();
    void checkLossAlertsAfter(std::chrono::milliseconds delay);

    void beginFinderScan();
    void showFinding(const Uuid& id);
    void startFinderTimer();
    void finderRefresh();
    void playFinderSoundIfNeeded(SteadyTime now);
    void scanAgainIfNeeded(SteadyTime now);

    void saveTrackedDevices();
    void report(const std::optional<std::string>& failure);

    PlatformServices m_platform;
    TrackedDevicesFile m_file;
    BluetoothStatus m_status;
    ScanSession m_scan;
    DiscoveredDevices m_devices;
    TrackedDevices m_tracked;
    ComputerLocation m_location;
    ProximityFinder m_finder;
    LossAlertMonitor m_losses;
    LossAlertDelivery m_delivery;
    std::optional<SteadyTime> m_lastTrackedSave; ///< also one that failed
    SteadyTime m_lastScanRefresh{};
    Timer m_firstState;
    Timer m_scanRefreshTimer;
    Timer m_lateCheck;
    Timer m_finderTimer;
};

} // namespace nightjar
