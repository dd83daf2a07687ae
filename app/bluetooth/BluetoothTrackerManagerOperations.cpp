// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/bluetooth/BluetoothTrackerManager.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

// What the user can do. What the scan needs is settled before anybody is told of it: whoever is told may
// start or end a scan at once.

namespace nightjar {

void BluetoothTrackerManager::startScanning() {
    m_scan.setRequested(true);
    if (!isPoweredOn()) {
        m_status.show(BluetoothTexts::radioState(m_platform.bluetooth.state()));
        return;
    }

    const auto generation = m_scan.begin(m_platform.scheduler.now(), true);
    m_losses.disarmAll();
    startScanRefreshTimer();
    m_platform.bluetooth.scan();

    if (!isFinding())
        clearDevices();
    if (generation == m_scan.generation())
        m_scan.setScanning(true);
    if (generation == m_scan.generation())
        m_status.show(BluetoothTexts::looking);
}

void BluetoothTrackerManager::clearDevices() {
    if (devices().empty())
        return;
    Q_EMIT aboutToChange();
    m_devices.clear();
    Q_EMIT devicesCleared();
    Q_EMIT devicesChanged();
}

void BluetoothTrackerManager::stopScanning() {
    m_scan.setRequested(false);
    m_platform.bluetooth.stopScan();
    const auto generation = m_scan.begin({}, false);
    stopScanRefreshTimer();
    m_losses.disarmAll();

    m_scan.setScanning(false);
    if (generation == m_scan.generation())
        m_status.show(BluetoothTexts::stopped(!devices().empty()));
}

void BluetoothTrackerManager::track(DiscoveredTracker device) {
    if (m_tracked.contains(device.id)) {
        m_status.show("Already tracking " + device.name);
        m_location.requestAccessOrLocation();
        return;
    }

    const auto now = m_platform.scheduler.now();
    const auto place = m_location.recentPlace(now);
    const auto heardAt = m_devices.heardAt(device.id).value_or(m_platform.scheduler.steadyNow());
    m_tracked.add({.id = device.id,
                   .name = device.name,
                   .discoveredName = device.name,
                   .addedAt = now,
                   .lastSeen = device.lastSeen,
                   .lastRSSI = device.rssi,
                   .latitude = place ? std::optional(place->latitude) : std::nullopt,
                   .longitude = place ? std::optional(place->longitude) : std::nullopt},
                  heardAt);
    saveTrackedDevices();
    m_status.show("Tracking " + device.name);
    m_location.requestAccessOrLocation();
}

void BluetoothTrackerManager::stopTracking(const Uuid& id) {
    m_tracked.remove(id);
    saveTrackedDevices();
    if (m_tracked.list().empty())
        m_location.stopUpdating();
}

void BluetoothTrackerManager::renameTrackedDevice(const Uuid& id, const std::string& name) {
    if (m_tracked.change(id, [name](TrackedBluetoothDevice& device) { device.name = name; }))
        saveTrackedDevices();
}

void BluetoothTrackerManager::startFinding(const Uuid& id) {
    const Uuid target = id;
    if (!isPoweredOn()) {
        m_status.show(BluetoothTexts::radioState(m_platform.bluetooth.state()));
        return;
    }

    beginFinderScan();
    if (!m_finder.start(target))
        return;
    if (m_devices.placeOf(target)) {
        Q_EMIT aboutToChange();
        if (const auto place = m_devices.restartReadings(target)) {
            Q_EMIT deviceChanged(*place);
            Q_EMIT devicesChanged();
        }
    }
    showFinding(target);
}

void BluetoothTrackerManager::beginFinderScan() {
    startFinderTimer();
    startScanRefreshTimer();
    m_scan.setRadioScanning();
    m_finder.noteScan(m_platform.scheduler.steadyNow());
    m_platform.bluetooth.scan();
}

void BluetoothTrackerManager::showFinding(const Uuid& id) {
    if (m_finder.isFinding(id))
        m_scan.setScanning(true);
    if (!m_finder.isFinding(id))
        return;
    const auto* device = deviceWith(id);
    m_status.show(BluetoothTexts::finding(device ? &device->name : nullptr));
}

void BluetoothTrackerManager::stopFinding() {
    m_finderTimer.cancel();
    if (m_finder.stop())
        stopScanning();
}

void BluetoothTrackerManager::setLossAlert(bool enabled, const Uuid& id) {
    const Uuid device = id;
    if (!m_tracked.change(device, [enabled](auto& tracked) { tracked.lossAlertEnabled = enabled; }))
        return;
    if (enabled) {
        m_delivery.requestPermission();
        armIfHeardJustNow(device);
    } else {
        m_losses.forgetAlerted(device);
    }
    saveTrackedDevices();
}

void BluetoothTrackerManager::armIfHeardJustNow(const Uuid& id) {
    constexpr std::chrono::seconds justNow{5};
    const auto heardAt = m_devices.heardAt(id);
    if (heardAt && m_platform.scheduler.steadyNow() - *heardAt <= justNow)
        m_losses.arm(id);
}

void BluetoothTrackerManager::setLossAlertDelay(double delay, const Uuid& id) {
    const Uuid device = id;
    if (!std::isfinite(delay))
        return;
    const double taken = std::max(delay, LossAlertMonitor::leastDelay);
    if (!m_tracked.change(device, [taken](auto& tracked) { tracked.lossAlertDelay = taken; }))
        return;
    m_losses.forgetAlerted(device);
    saveTrackedDevices();
}

void BluetoothTrackerManager::sendTestIMessage() {
    m_delivery.sendTest();
}

void BluetoothTrackerManager::updateIMessageStatus() {
    m_delivery.updateStatus();
}

} // namespace nightjar
