// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/network/LocalNetworkBrowser.h"

#include "app/network/NetworkTexts.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

// What the user can do. What a scan needs is settled before anybody is told of it: whoever is told may start
// or end one at once, or forget the very device.

namespace nightjar {

namespace {

/// What the network brings is written this often at most.
constexpr std::chrono::seconds savePause{5};

std::optional<std::filesystem::path> fileOf(const HostEnvironment& host) {
    return host.applicationSupportFolder().transform(
        [](const auto& folder) { return folder / "Nightjar" / "local-network-devices.json"; });
}

} // namespace

LocalNetworkBrowser::LocalNetworkBrowser(const PlatformServices& platform)
    : m_platform(platform),
      m_file(fileOf(platform.host)),
      m_devices(platform.text, m_file.load()),
      m_state(announcerOf<&LocalNetworkBrowser::stateChanged>(*this), std::string(NetworkTexts::ready)),
      m_isScanning(announcerOf<&LocalNetworkBrowser::isScanningChanged>(*this)),
      m_errorMessage(announcerOf<&LocalNetworkBrowser::errorMessageChanged>(*this)) {
    listen();
    tellImportant();
}

LocalNetworkBrowser::~LocalNetworkBrowser() {
    m_platform.services.setListener({});
    m_platform.services.setImportant({});
    if (m_isBrowsing)
        m_platform.services.cancel();
    // Nobody is left who could be told of a failure.
    if (m_save)
        static_cast<void>(m_file.save(devices()));
}

void LocalNetworkBrowser::start() {
    if (m_isBrowsing)
        return;
    m_isBrowsing = true;
    const int generation = ++m_generation;
    m_presence.clear();
    m_departures.disarmAll();
    m_isBlind = false;
    m_lastCheck = m_judgesFrom = m_platform.scheduler.steadyNow();
    m_dateAhead = dateAheadOf(m_lastCheck);
    m_monitorTimer = m_platform.scheduler.every(
        std::chrono::seconds(5), [this] { checkLossAlerts(m_platform.scheduler.steadyNow()); });
    for (const auto type : serviceTypes)
        m_platform.services.browse(std::string(type));

    publishScanning();
    show(NetworkTexts::looking, generation);
    if (generation == m_generation)
        setErrorMessage(std::nullopt);
}

void LocalNetworkBrowser::stop() {
    m_platform.services.cancel();
    m_isBrowsing = false;
    const int generation = ++m_generation;
    m_presence.clear();
    m_departures.disarmAll();
    m_monitorTimer.cancel();

    publishScanning();
    Q_EMIT aboutToChange();
    if (generation == m_generation) {
        m_devices.setAllOffline();
        Q_EMIT devicesChanged();
    }
    show(m_devices.unsorted().empty() ? NetworkTexts::ready : NetworkTexts::stopped, generation);
}

void LocalNetworkBrowser::publishScanning() {
    if (m_isScanning.get() != m_isBrowsing)
        m_isScanning.change([this](bool& scanning) { scanning = m_isBrowsing; });
}

void LocalNetworkBrowser::show(std::string_view text, int generation) {
    if (generation != m_generation || m_state.get() == text)
        return;
    m_state.change([&](std::string& shown) {
        if (generation == m_generation)
            shown = text;
    });
}

/// False when the device is not known, or no longer once everybody knows of the change to come.
template <class Change>
bool LocalNetworkBrowser::change(const std::string& id, Change&& applyTo) {
    if (!m_devices.find(id))
        return false;
    Q_EMIT aboutToChange();
    auto* device = m_devices.find(id);
    if (!device)
        return false;
    std::forward<Change>(applyTo)(*device);
    Q_EMIT devicesChanged();
    return true;
}

void LocalNetworkBrowser::track(const std::string& id) {
    const bool isKnown = change(std::string(id), [this](LocalNetworkDevice& device) {
        device.isTracked = true;
        if (device.isOnline)
            m_departures.arm(device.id);
    });
    if (!isKnown)
        return;
    tellImportant();
    saveDevices();
}

void LocalNetworkBrowser::stopTracking(const std::string& id) {
    const bool isKnown = change(std::string(id), [this](LocalNetworkDevice& device) {
        device.isTracked = false;
        device.lossAlertEnabled = false;
        m_departures.forget(device.id);
    });
    if (!isKnown)
        return;
    tellImportant();
    saveDevices();
}

void LocalNetworkBrowser::forget(const std::string& id) {
    const std::string forgotten = id;
    if (m_devices.find(forgotten)) {
        Q_EMIT aboutToChange();
        m_devices.remove(forgotten);
        m_departures.forget(forgotten);
        Q_EMIT devicesChanged();
    }
    tellImportant();
    saveDevices();
}

void LocalNetworkBrowser::setLossAlert(bool enabled, const std::string& id) {
    const bool isKnown = change(std::string(id), [this, enabled](LocalNetworkDevice& device) {
        device.lossAlertEnabled = enabled;
        if (!enabled)
            return m_departures.endAlert(device.id);
        device.isTracked = true;
        if (device.isOnline)
            m_departures.arm(device.id);
    });
    if (!isKnown)
        return;
    if (enabled) {
        tellImportant();
        m_platform.notifications.requestPermission();
    }
    saveDevices();
}

void LocalNetworkBrowser::setLossAlertDelay(double delay, const std::string& id) {
    // No file could hold it.
    if (!std::isfinite(delay))
        return;
    const bool isKnown = change(std::string(id), [this, delay](LocalNetworkDevice& device) {
        device.lossAlertDelay = delay;
        m_departures.restartGrace(device, m_platform.scheduler.steadyNow());
    });
    if (isKnown)
        saveDevices();
}

std::string LocalNetworkBrowser::monitoringStatus(const LocalNetworkDevice& device) const {
    return std::string(m_departures.status(device));
}

bool LocalNetworkBrowser::isWatching() const {
    return m_isBrowsing && !m_isBlind && state() != NetworkTexts::failed;
}

void LocalNetworkBrowser::tellImportant() {
    m_platform.services.setImportant([this](const ServiceInstance& instance) {
        const auto* device = deviceWith(LocalNetworkDevice::identifier(instance.name, instance.domain));
        return device && device->isTracked;
    });
}

/// A machine that comes brings one change for each type of its services: they are written once, at the end of
/// the turn of the event loop in which they came. One that comes and goes all the time must not keep the disk
/// busy, nor this thread, which waits for it.
void LocalNetworkBrowser::saveSoon() {
    if (m_save)
        return;
    const auto now = m_platform.scheduler.steadyNow();
    const auto due = m_lastSave ? std::max(now, *m_lastSave + savePause) : now;
    m_save = m_platform.scheduler.after(std::chrono::ceil<std::chrono::milliseconds>(due - now),
                                        [this] { saveDevices(); });
}

void LocalNetworkBrowser::saveDevices() {
    m_save.cancel();
    m_lastSave = m_platform.scheduler.steadyNow();
    if (const auto saved = m_file.save(devices()); !saved)
        setErrorMessage(NetworkTexts::saveFailed(saved.error()));
}

void LocalNetworkBrowser::setErrorMessage(const std::optional<std::string>& sentence) {
    m_errorMessage.set(sentence);
}

} // namespace nightjar
