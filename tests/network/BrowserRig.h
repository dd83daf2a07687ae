// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/linux/AvahiServiceBrowser.h"
#include "platform/linux/BusConnector.h"
#include "platform/linux/QtMainThread.h"
#include "platform/linux/QtScheduler.h"
#include "tests/support/EventLoop.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace nightjar {

/// A browser on a bus, and what it told.
class BrowserRig {
public:
    using Kind = ServiceBrowserState::Kind;

    /// Without a socket the computer's own links are not looked at.
    BrowserRig(
        BusConnector::OpenBus openBus, const AvahiSettings& settings,
        NetworkLinks::OpenSocket openLinks = [] { return -1; })
        : m_connector(m_mainThread, m_scheduler, std::move(openBus)),
          m_links(std::move(openLinks)),
          m_browser(m_connector, m_scheduler, m_links, settings) {
        m_browser.setListener({.onResults =
                                   [this](const std::string& type, const auto& instances) {
                                       sets[type] = instances;
                                       ++tellings;
                                       smallest[type] = std::min(
                                           smallest.try_emplace(type, instances.size()).first->second,
                                           instances.size());
                                   },
                               .onState = [this](const auto& state) { states.push_back(state); },
                               .onOutOfSight =
                                   [this](const auto& instances) {
                                       for (const auto& instance : instances)
                                           outOfSight.push_back(instance.name);
                                   }});
    }

    [[nodiscard]] ServiceBrowser& browser() { return m_browser; }
    [[nodiscard]] QDBusConnection bus() const { return m_connector.bus(); }
    [[nodiscard]] bool becomes(Kind kind, std::chrono::milliseconds limit = std::chrono::seconds(20)) {
        return runEventsUntil([&] { return !states.empty() && states.back().kind == kind; }, limit);
    }
    /// "name@interface" of each, in order.
    [[nodiscard]] std::vector<std::string> told(const std::string& type) const {
        std::vector<std::string> texts;
        if (const auto found = sets.find(type); found != sets.end())
            for (const auto& instance : found->second)
                texts.push_back(instance.name + '@' + instance.interfaceName.value_or("?"));
        return texts;
    }
    [[nodiscard]] bool tells(const std::string& type, const std::vector<std::string>& texts,
                             std::chrono::milliseconds limit = std::chrono::seconds(20)) {
        return runEventsUntil([&] { return sets.contains(type) && told(type) == texts; }, limit);
    }

    std::map<std::string, std::vector<ServiceInstance>> sets; ///< the latest, by type
    std::map<std::string, std::size_t> smallest;              ///< that was told of the type
    int tellings = 0;
    std::vector<ServiceBrowserState> states;
    std::vector<std::string> outOfSight; ///< names

private:
    QtMainThread m_mainThread;
    QtScheduler m_scheduler;
    BusConnector m_connector;
    NetworkLinks m_links;
    AvahiServiceBrowser m_browser;
};

} // namespace nightjar
