// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/network/LocalNetworkBrowser.h"
#include "platform/simulated/SimulatedComputer.h"
#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nightjar::testing {

[[nodiscard]] inline ServiceInstance service(std::string name, std::string type = "_ssh._tcp",
                                             std::optional<std::string> interface = "wlan0") {
    return {.name = std::move(name), .type = std::move(type), .domain = "local.", .interfaceName = interface};
}

/// The local network browser on a simulated computer with a home.
class NetworkRig : public SimulatedComputer {
public:
    NetworkRig() { host.setApplicationSupportFolder(m_home.path()); }

    LocalNetworkBrowser& create() {
        browser.reset();
        browser = std::make_unique<LocalNetworkBrowser>(services());
        return *browser;
    }
    LocalNetworkBrowser& scan() {
        create().start();
        return *browser;
    }
    /// Hears "Printer" and watches it.
    void watchPrinter(double delay = 60) {
        network.announce(printer);
        browser->setLossAlert(true, printerID);
        browser->setLossAlertDelay(delay, printerID);
    }

    void pass(std::chrono::milliseconds time) { scheduler.advance(time); }
    [[nodiscard]] const LocalNetworkDevice& device(const std::string& id) const {
        return *browser->deviceWith(id);
    }
    [[nodiscard]] std::string statusOf(const std::string& id) const {
        return browser->monitoringStatus(device(id));
    }
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const auto& known : browser->devices())
            all.push_back(known.name);
        return all;
    }
    [[nodiscard]] std::vector<std::string> titles() const {
        std::vector<std::string> all;
        for (const auto& posted : notifications.posted())
            all.push_back(posted.title);
        return all;
    }
    [[nodiscard]] std::filesystem::path file() const {
        return m_home.path() / "Nightjar" / "local-network-devices.json";
    }

    static inline const std::string printerID = "printer|local.";
    static inline const ServiceInstance printer = service("Printer", "_ipp._tcp");
    static inline const std::string left = "Device left the network";
    static inline const std::string returned = "Device returned to the network";

private:
    TemporaryFolder m_home;

public:
    std::unique_ptr<LocalNetworkBrowser> browser;
};

} // namespace nightjar::testing
