// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/bluetooth/BluetoothTrackerManager.h"

#include <chrono>

// What happens without the user: the radio, the computer and time. Whoever is told of a change may start or
// end a scan at once, so each step looks whether its scan still is the current one.

namespace nightjar {

namespace {

using namespace std::chrono_literals;

constexpr auto scanRefreshPeriod = 5s;
constexpr auto finderRefreshPeriod = 250ms;
constexpr auto savePeriod = 5s;

/// A tick this much after the one before: the thread was held up.
constexpr auto heldUp = scanRefreshPeriod + 2s;
/// Time to be heard for whoever sent meanwhile: the radio may have been held up too, and some report an
/// address only once in ten seconds.
constexpr auto catchUp = 12s;
/// How soon a radio that has to prove first that it lives is looked at again.
constexpr auto proofTime = 200ms;

} // namespace

void BluetoothTrackerManager::centralManagerDidUpdateState() {
    m_firstState.cancel();
    auto generation = m_scan.generation();
    const bool isOn = isPoweredOn();
    if (!isOn && isScanning()) {
        m_platform.bluetooth.stopScan();
        generation = m_scan.begin({}, false);
        stopScanRefreshTimer();
        m_losses.disarmAll();
    }

    m_status.show(BluetoothTexts::radioState(m_platform.bluetooth.state()));
    if (generation != m_scan.generation())
        return;
    if (isOn) {
        resumeScan();
    } else {
        m_scan.setScanning(false);
    }
}

void BluetoothTrackerManager::resumeScan() {
    if (isScanning()) {
        // The radio may have been away for a moment.
        m_platform.bluetooth.scan();
    } else if (m_scan.isRequested()) {
        startScanning();
    } else if (isFinding() && trackedID()) {
        beginFinderScan();
        showFinding(Uuid(*trackedID()));
    }
}

void BluetoothTrackerManager::didDiscover(const BluetoothAdvertisement& advertisement) {
    if (!m_scan.isRadioScanning())
        return;
    const Uuid id = advertisement.peripheral;
    const int rssi = advertisement.rssi;
    const auto now = m_platform.scheduler.steadyNow();
    if (!m_devices.admit(advertisement, now, !isFinding()) || !BluetoothProximityEstimator::accepts(rssi))
        return;

    const auto generation = m_scan.generation();
    const Date date = m_platform.scheduler.now();
    Q_EMIT aboutToChange();
    const auto place = m_devices.update(advertisement, now, date);
    Q_EMIT deviceChanged(place);
    Q_EMIT devicesChanged();
    if (generation == m_scan.generation() && m_tracked.contains(id))
        hearTracked(id, rssi, now, date);
    if (generation == m_scan.generation())
        showHeard(id, rssi);
}

void BluetoothTrackerManager::hearTracked(const Uuid& id, std::int32_t rssi, SteadyTime now, Date date) {
    m_losses.arm(id);
    m_tracked.setHeardAt(id, now);
    m_location.requestLocationIfNeeded();
    const bool wasAlerted = m_losses.forgetAlerted(id);
    m_tracked.change(id, [&](TrackedBluetoothDevice& device) {
        const auto place = m_location.recentPlace(date);
        device.observe(date, rssi, place ? std::optional(place->latitude) : std::nullopt,
                       place ? std::optional(place->longitude) : std::nullopt);
    });

    const auto* device = m_tracked.find(id);
    if (wasAlerted && device && device->lossAlertEnabled) {
        m_delivery.tellReturned(TrackedBluetoothDevice(*device));
        m_delivery.deliver();
    }
    if (!m_lastTrackedSave || m_platform.scheduler.steadyNow() - *m_lastTrackedSave >= savePeriod)
        saveTrackedDevices();
}

void BluetoothTrackerManager::showHeard(const Uuid& id, std::int32_t rssi) {
    if (trackedID() == id) {
        m_status.show(BluetoothTexts::liveSignal(rssi));
    } else if (!isFinding()) {
        m_status.showFound(devices().size());
    }
}

void BluetoothTrackerManager::startScanRefreshTimer() {
    if (m_scanRefreshTimer)
        return;
    m_lastScanRefresh = m_platform.scheduler.steadyNow();
    m_scanRefreshTimer = m_platform.scheduler.every(scanRefreshPeriod, [this] { scanRefresh(); });
}

void BluetoothTrackerManager::stopScanRefreshTimer() {
    m_scanRefreshTimer.cancel();
    m_lateCheck.cancel();
}

void BluetoothTrackerManager::scanRefresh() {
    const auto now = m_platform.scheduler.steadyNow();
    const bool wasHeldUp = now - std::exchange(m_lastScanRefresh, now) >= heldUp;
    // Whoever slept must hear of it before silence is taken for loss.
    m_platform.wake.check();
    Q_EMIT aboutToChange();
    Q_EMIT timePassed();
    if (!m_scan.isRadioScanning())
        return;
    if (wasHeldUp)
        checkLossAlertsAfter(catchUp);
    else if (!m_lateCheck)
        checkLossAlerts();
}

void BluetoothTrackerManager::checkLossAlertsAfter(std::chrono::milliseconds delay) {
    m_lateCheck = m_platform.scheduler.after(delay, [this] {
        m_lateCheck.cancel();
        checkLossAlerts();
    });
}

bool BluetoothTrackerManager::isMonitoring() const {
    return isScanning() && isPoweredOn() && m_scan.monitoringStartedAt();
}

void BluetoothTrackerManager::checkLossAlerts() {
    if (!isMonitoring())
        return;
    const auto now = m_platform.scheduler.steadyNow();
    const auto due = m_losses.due(m_tracked, now);
    // A service that hangs hears nobody: before anyone is missed, it has to give a sign of life.
    if (!due.empty() && !m_platform.bluetooth.isResponsive())
        return checkLossAlertsAfter(proofTime);
    for (const Uuid& id : due) {
        const auto* device = m_tracked.find(id);
        if (!device || !m_losses.isDue(*device, m_tracked.heardAt(id), now))
            continue;
        m_losses.noteAlerted(id);
        m_delivery.tellLost(TrackedBluetoothDevice(*device));
    }
    m_delivery.deliver();
}

void BluetoothTrackerManager::startFinderTimer() {
    m_finderTimer = m_platform.scheduler.every(finderRefreshPeriod, [this] { finderRefresh(); });
}

void BluetoothTrackerManager::finderRefresh() {
    if (!isFinding())
        return;
    Q_EMIT aboutToChange();
    Q_EMIT timePassed();
    if (!isFinding() || !trackedID())
        return;
    const auto now = m_platform.scheduler.steadyNow();
    playFinderSoundIfNeeded(now);
    scanAgainIfNeeded(now);
}

void BluetoothTrackerManager::playFinderSoundIfNeeded(SteadyTime now) {
    const auto place = m_devices.placeOf(*trackedID());
    if (!place)
        return;
    if (m_finder.soundIsDue(devices()[*place].band, *m_devices.heardAt(*trackedID()), now))
        m_platform.sound.play("Tink");
}

void BluetoothTrackerManager::scanAgainIfNeeded(SteadyTime now) {
    if (!m_scan.isRadioScanning() || !isPoweredOn())
        return;
    if (!m_finder.scanIsDue(m_devices.heardAt(*trackedID()), now))
        return;
    m_finder.noteScan(now);
    m_platform.bluetooth.scan();
}

void BluetoothTrackerManager::macDidWake() {
    m_scan.setMonitoringStartedAt(isScanning() ? std::optional(m_platform.scheduler.now()) : std::nullopt);
    m_losses.disarmAll();
    if (m_scan.isRequested() && !isFinding() && isPoweredOn()) {
        m_scan.setRadioScanning();
        m_platform.bluetooth.scan();
    }
}

void BluetoothTrackerManager::didFailWithError(const LocationError& error) {
    report(ComputerLocation::sentence(error));
}

} // namespace nightjar
