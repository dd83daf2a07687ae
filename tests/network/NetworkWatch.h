// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/network/LocalNetworkBrowser.h"
#include "platform/linux/AvahiServiceBrowser.h"
#include "platform/linux/BusConnector.h"
#include "platform/linux/QtMainThread.h"
#include "platform/linux/QtScheduler.h"
#include "platform/simulated/SimulatedComputer.h"
#include "tests/support/HurriedScheduler.h"
#include "tests/support/TemporaryFolder.h"

#include <string>
#include <vector>

namespace nightjar::testing {

/// The controller of the local network on the real binding, on a bus and in a network of the test's own.
class NetworkWatch {
public:
    /// For the controller time passes `hurry` times as fast; for the binding `settings` do that.
    NetworkWatch(BusConnector::OpenBus openBus, NetworkLinks::OpenSocket openLinks,
                 const AvahiSettings& settings, int hurry)
        : m_hurried(m_scheduler, hurry),
          m_connector(m_mainThread, m_scheduler, std::move(openBus)),
          m_links(std::move(openLinks)),
          m_network(m_connector, m_scheduler, m_links, settings),
          browser(services()) {}

    [[nodiscard]] const LocalNetworkDevice* device(const std::string& name) const {
        return browser.deviceWith(LocalNetworkDevice::identifier(name, "local."));
    }
    [[nodiscard]] bool isOnline(const std::string& name) const {
        const auto* found = device(name);
        return found && found->isOnline;
    }
    void trackWithAlert(const std::string& name, double delay) {
        const auto id = LocalNetworkDevice::identifier(name, "local.");
        browser.setLossAlertDelay(delay, id);
        browser.setLossAlert(true, id);
    }
    [[nodiscard]] std::vector<std::string> told() const {
        std::vector<std::string> titles;
        for (const auto& notification : m_computer.notifications.posted())
            titles.push_back(notification.title);
        return titles;
    }
    [[nodiscard]] SteadyTime hurriedNow() const { return m_hurried.steadyNow(); }

private:
    PlatformServices services() {
        m_computer.host.setApplicationSupportFolder(m_folder.path());
        const auto others = m_computer.services(m_hurried);
        return {.host = others.host,
                .mainThread = others.mainThread,
                .scheduler = others.scheduler,
                .preferences = others.preferences,
                .notifications = others.notifications,
                .text = others.text,
                .bluetooth = others.bluetooth,
                .location = others.location,
                .sound = others.sound,
                .wake = others.wake,
                .messages = others.messages,
                .services = m_network};
    }

    TemporaryFolder m_folder;
    SimulatedComputer m_computer;
    QtMainThread m_mainThread;
    QtScheduler m_scheduler;
    HurriedScheduler m_hurried;
    BusConnector m_connector;
    NetworkLinks m_links;
    AvahiServiceBrowser m_network;

public:
    LocalNetworkBrowser browser;
};

} // namespace nightjar::testing
