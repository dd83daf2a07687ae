// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/bluetooth/BluetoothTrackerManager.h"

#include <chrono>

namespace nightjar {

namespace {

/// How long Bluetooth may be starting.
constexpr std::chrono::seconds startPatience{5};

std::optional<std::filesystem::path> fileOf(const HostEnvironment& host) {
    return host.applicationSupportFolder().transform(
        [](const auto& folder) { return folder / "Nightjar" / "tracked-bluetooth-devices.json"; });
}

} // namespace

BluetoothTrackerManager::BluetoothTrackerManager(const PlatformServices& platform)
    : m_platform(platform),
      m_file(fileOf(platform.host)),
      m_status(announcerOf<&BluetoothTrackerManager::stateChanged>(*this),
               announcerOf<&BluetoothTrackerManager::errorMessageChanged>(*this)),
      m_scan(announcerOf<&BluetoothTrackerManager::isScanningChanged>(*this)),
      m_devices(platform.scheduler),
      m_tracked(platform.text, announcerOf<&BluetoothTrackerManager::trackedDevicesChanged>(*this),
                m_file.load()),
      m_location(platform.location, platform.scheduler),
      m_finder({.trackedID = announcerOf<&BluetoothTrackerManager::trackedIDChanged>(*this),
                .isFinding = announcerOf<&BluetoothTrackerManager::isFindingChanged>(*this),
                .soundEnabled = announcerOf<&BluetoothTrackerManager::finderSoundEnabledChanged>(*this)}),
      m_delivery(
          platform,
          {.messagesEnabled = announcerOf<&BluetoothTrackerManager::iMessageAlertsEnabledChanged>(*this),
           .recipient = announcerOf<&BluetoothTrackerManager::iMessageRecipientChanged>(*this),
           .status = announcerOf<&BluetoothTrackerManager::iMessageStatusChanged>(*this)},
          [this](const std::string& failure) { report(failure); }) {
    listen();
    if (!m_tracked.list().empty())
        m_location.requestAccessOrLocation();
}

BluetoothTrackerManager::~BluetoothTrackerManager() {
    m_platform.wake.setListener({});
    m_platform.location.setListener({}, {});
    m_platform.bluetooth.setListener({});
    if (m_scan.isRadioScanning())
        m_platform.bluetooth.stopScan();
}

void BluetoothTrackerManager::listen() {
    m_platform.location.setListener(
        {.onAuthorizationChanged = [this] { m_location.requestLocationIfNeeded(); },
         .onFixes = [this](const std::vector<LocationFix>& fixes) { m_location.receive(fixes); },
         .onError = [this](const LocationError& error) { didFailWithError(error); }},
        {.accuracy = 100, .distanceFilter = 50});
    m_platform.bluetooth.setListener(
        {.onStateChanged = [this] { centralManagerDidUpdateState(); },
         .onAdvertisement =
             [this](const BluetoothAdvertisement& advertisement) { didDiscover(advertisement); }});
    m_platform.wake.setListener([this] { macDidWake(); });
    // A radio that is ready already tells of no change, and where there is no Bluetooth at all nobody does.
    const bool isKnown = m_platform.bluetooth.state() != BluetoothRadioState::unknown;
    m_firstState = m_platform.scheduler.after(isKnown ? std::chrono::seconds{0} : startPatience, [this] {
        if (state() == BluetoothTexts::starting)
            centralManagerDidUpdateState();
    });
}

void BluetoothTrackerManager::setErrorMessage(const std::optional<std::string>& sentence) {
    m_status.errorMessage.set(sentence);
}

std::optional<DiscoveredTracker> BluetoothTrackerManager::trackedDevice() const {
    const auto* device = trackedID() ? deviceWith(*trackedID()) : nullptr;
    return device ? std::optional(*device) : std::nullopt;
}

bool BluetoothTrackerManager::isPoweredOn() const {
    return m_platform.bluetooth.state() == BluetoothRadioState::poweredOn;
}

void BluetoothTrackerManager::saveTrackedDevices() {
    // A disk that refuses is asked no more often than one that takes.
    m_lastTrackedSave = m_platform.scheduler.steadyNow();
    if (const auto saved = m_file.save(m_tracked.list()); !saved)
        report("Could not save the tracked Bluetooth devices: " + saved.error());
}

void BluetoothTrackerManager::report(const std::optional<std::string>& failure) {
    if (failure)
        m_status.errorMessage.set(failure);
}

} // namespace nightjar
