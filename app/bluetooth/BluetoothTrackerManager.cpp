// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/bluetooth/BluetoothTrackerManager.h"

namespace nightjar {

BluetoothTrackerManager::BluetoothTrackerManager(const PlatformServices& platform)
    : m_platform(platform),
      m_devices(announcerOf<&BluetoothTrackerManager::devicesChanged>(*this)),
      m_state(announcerOf<&BluetoothTrackerManager::stateChanged>(*this), "Bluetooth is starting…"),
      m_isScanning(announcerOf<&BluetoothTrackerManager::isScanningChanged>(*this)),
      m_trackedID(announcerOf<&BluetoothTrackerManager::trackedIDChanged>(*this)),
      m_isFinding(announcerOf<&BluetoothTrackerManager::isFindingChanged>(*this)),
      m_finderSoundEnabled(announcerOf<&BluetoothTrackerManager::finderSoundEnabledChanged>(*this)),
      m_trackedDevices(announcerOf<&BluetoothTrackerManager::trackedDevicesChanged>(*this)),
      m_errorMessage(announcerOf<&BluetoothTrackerManager::errorMessageChanged>(*this)),
      m_iMessageAlertsEnabled(announcerOf<&BluetoothTrackerManager::iMessageAlertsEnabledChanged>(*this)),
      m_iMessageRecipient(announcerOf<&BluetoothTrackerManager::iMessageRecipientChanged>(*this)),
      m_iMessageStatus(announcerOf<&BluetoothTrackerManager::iMessageStatusChanged>(*this),
                       "Not configured") {}

BluetoothTrackerManager::~BluetoothTrackerManager() = default;

const DiscoveredTrackers& BluetoothTrackerManager::devices() const {
    return m_devices.get();
}

const std::string& BluetoothTrackerManager::state() const {
    return m_state.get();
}

bool BluetoothTrackerManager::isScanning() const {
    return m_isScanning.get();
}

const std::optional<Uuid>& BluetoothTrackerManager::trackedID() const {
    return m_trackedID.get();
}

bool BluetoothTrackerManager::isFinding() const {
    return m_isFinding.get();
}

bool BluetoothTrackerManager::finderSoundEnabled() const {
    return m_finderSoundEnabled.get();
}

const std::vector<TrackedBluetoothDevice>& BluetoothTrackerManager::trackedDevices() const {
    return m_trackedDevices.get();
}

const std::optional<std::string>& BluetoothTrackerManager::errorMessage() const {
    return m_errorMessage.get();
}

bool BluetoothTrackerManager::iMessageAlertsEnabled() const {
    return m_iMessageAlertsEnabled.get();
}

const std::string& BluetoothTrackerManager::iMessageRecipient() const {
    return m_iMessageRecipient.get();
}

const std::string& BluetoothTrackerManager::iMessageStatus() const {
    return m_iMessageStatus.get();
}

void BluetoothTrackerManager::setFinderSoundEnabled(bool enabled) {
    m_finderSoundEnabled.set(enabled);
}

void BluetoothTrackerManager::setErrorMessage(const std::optional<std::string>& sentence) {
    m_errorMessage.set(sentence);
}

void BluetoothTrackerManager::setIMessageAlertsEnabled(bool enabled) {
    m_iMessageAlertsEnabled.set(enabled);
}

void BluetoothTrackerManager::setIMessageRecipient(const std::string& recipient) {
    m_iMessageRecipient.set(recipient);
}

const DiscoveredTracker* BluetoothTrackerManager::deviceWith(const Uuid&) const {
    return nullptr;
}

std::optional<DiscoveredTracker> BluetoothTrackerManager::trackedDevice() const {
    return std::nullopt;
}

const TrackedBluetoothDevice* BluetoothTrackerManager::trackedDeviceWith(const Uuid&) const {
    return nullptr;
}

const std::optional<std::filesystem::path>& BluetoothTrackerManager::trackedDevicesURL() const {
    return m_trackedDevicesURL;
}

// TODO: the operations.
void BluetoothTrackerManager::startScanning() {}
void BluetoothTrackerManager::stopScanning() {}
void BluetoothTrackerManager::track(const DiscoveredTracker&) {}
void BluetoothTrackerManager::stopTracking(const Uuid&) {}
void BluetoothTrackerManager::renameTrackedDevice(const Uuid&, const std::string&) {}
void BluetoothTrackerManager::startFinding(const Uuid&) {}
void BluetoothTrackerManager::stopFinding() {}
void BluetoothTrackerManager::setLossAlert(bool, const Uuid&) {}
void BluetoothTrackerManager::setLossAlertDelay(double, const Uuid&) {}
void BluetoothTrackerManager::sendTestIMessage() {}
void BluetoothTrackerManager::updateIMessageStatus() {}

} // namespace nightjar
