// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/ObservableController.h"
#include "app/network/DepartureMonitor.h"
#include "app/network/KnownDevices.h"
#include "app/network/ServicePresence.h"
#include "core/network/LocalNetworkDevice.h"
#include "core/network/LocalNetworkDevicesFile.h"
#include "platform/PlatformServices.h"

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nightjar {

/// The controller of the local network side: the browsing, the devices known, and the alerts of tracked
/// devices that left. Main thread. Operations return at once and report through the published fields; they
/// may be called from within any signal.
class LocalNetworkBrowser : public ObservableController {
    Q_OBJECT
    Q_PROPERTY(std::vector<nightjar::LocalNetworkDevice> devices READ devices NOTIFY devicesChanged)
    Q_PROPERTY(std::string state READ state NOTIFY stateChanged)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY isScanningChanged)
    Q_PROPERTY(std::optional<std::string> errorMessage READ errorMessage WRITE setErrorMessage NOTIFY
                   errorMessageChanged)

public:
    /// What is browsed, in this order.
    static constexpr std::array<std::string_view, 15> serviceTypes{
        "_workstation._tcp", "_device-info._tcp", "_companion-link._tcp", "_airplay._tcp",
        "_raop._tcp",        "_ipp._tcp",         "_ipps._tcp",           "_printer._tcp",
        "_smb._tcp",         "_ssh._tcp",         "_http._tcp",           "_https._tcp",
        "_homekit._tcp",     "_googlecast._tcp",  "_spotify-connect._tcp"};

    /// Loads the known devices; nothing is browsed yet.
    explicit LocalNetworkBrowser(const PlatformServices& platform);
    ~LocalNetworkBrowser() override;

    /// Online devices first, each group as a file browser sorts names. Sorted when looked at.
    [[nodiscard]] const std::vector<LocalNetworkDevice>& devices() const { return m_devices.list(); }
    [[nodiscard]] const std::string& state() const { return m_state.get(); }
    [[nodiscard]] bool isScanning() const { return m_isScanning.get(); }
    /// Whether departures would be noticed: a scan runs and the network is heard.
    [[nodiscard]] bool isWatching() const;
    [[nodiscard]] const std::optional<std::string>& errorMessage() const { return m_errorMessage.get(); }
    void setErrorMessage(const std::optional<std::string>& sentence);

    /// Null when the device is not known. Does not search the list.
    [[nodiscard]] const LocalNetworkDevice* deviceWith(const std::string& id) const {
        return m_devices.find(id);
    }
    /// The file of the known devices; absent when the user has no home.
    [[nodiscard]] const std::optional<std::filesystem::path>& storageURL() const { return m_file.path(); }

    void start();
    void stop();
    void track(const std::string& id);
    /// Ends its alert too.
    void stopTracking(const std::string& id);
    /// A device that is still announced comes back, untracked, with the next change of one of its services.
    void forget(const std::string& id);
    /// Turning the alert on tracks the device too.
    void setLossAlert(bool enabled, const std::string& id);
    /// In seconds; kept as it is given, unless it is no number. A grace that runs begins anew.
    void setLossAlertDelay(double delay, const std::string& id);
    /// How the departure alert of a device stands.
    [[nodiscard]] std::string monitoringStatus(const LocalNetworkDevice& device) const;

Q_SIGNALS:
    void devicesChanged();
    void stateChanged();
    void isScanningChanged();
    void errorMessageChanged();

private:
    void listen();
    void receive(const std::vector<ServiceInstance>& instances, const std::string& serviceType);
    void handle(const ServiceBrowserState& browser);
    void loseSight(const std::vector<ServiceInstance>& instances);
    void recordResults(const std::vector<ServiceInstance>& instances, const std::string& serviceType);
    [[nodiscard]] std::vector<LocalNetworkDevice> updateMonitoring(SteadyTime now);
    void checkLossAlerts(SteadyTime now);
    void postLeft(const LocalNetworkDevice& device);
    void postReturned(const LocalNetworkDevice& device);

    void regainSight(SteadyTime now);
    void judgeNoSoonerThan(SteadyTime time);
    [[nodiscard]] Seconds dateAheadOf(SteadyTime now) const;
    [[nodiscard]] bool mayHaveMissedResults(SteadyTime now);

    template <class Change>
    bool change(const std::string& id, Change&& applyTo);
    void publishScanning();
    /// Unless another scan has begun or ended since.
    void show(std::string_view text, int generation);
    void tellImportant();
    void saveSoon();
    void saveDevices();

    PlatformServices m_platform;
    LocalNetworkDevicesFile m_file;
    KnownDevices m_devices;
    ServicePresence m_presence;
    DepartureMonitor m_departures;
    Published<std::string> m_state;
    Published<bool> m_isScanning; ///< follows `m_isBrowsing`
    Published<std::optional<std::string>> m_errorMessage;

    bool m_isBrowsing = false;
    int m_generation = 0;   ///< of scans and of the times between them
    bool m_isBlind = false; ///< nothing can be heard of the network
    SteadyTime m_lastCheck{};
    Seconds m_dateAhead{};     ///< of steady time, at the last check
    SteadyTime m_judgesFrom{}; ///< before, absence may be a thing of the past
    Timer m_monitorTimer;
    Timer m_save;
    std::optional<SteadyTime> m_lastSave;
};

} // namespace nightjar
