// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/NetworkReport.h"

#include "app/headless/ReadableText.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace nightjar::headless {
namespace {

constexpr std::size_t mostOfAName = 100;
constexpr std::size_t mostOfServices = 200;
constexpr double longestShown = 1e9; ///< seconds

std::string watchOf(const LocalNetworkDevice& device) {
    if (!device.isTracked)
        return {};
    const std::string name = "tracking " + terminalSafe(device.name, mostOfAName);
    if (!device.lossAlertEnabled)
        return name + ", no alert";
    return name + ", alert when it has been away for " +
           std::to_string(std::lround(std::clamp(device.lossAlertDelay, 0.0, longestShown))) + " seconds";
}

} // namespace

NetworkReport::NetworkReport(LocalNetworkBrowser& browser, std::function<void()> changed)
    : m_browser(browser), m_changed(std::move(changed)) {
    using B = LocalNetworkBrowser;
    m_states.add("network", [this] { return m_browser.state(); });
    // Printing an error is what a click on OK is in the window: the same sentence is told again next time.
    m_states.addError([this] { return m_browser.errorMessage().value_or(""); },
                      [this] { m_browser.setErrorMessage({}); });
    for (const auto signal : {&B::stateChanged, &B::errorMessageChanged})
        connect(&browser, signal, this, m_changed);
    connect(&browser, &B::devicesChanged, this, [this] {
        m_devicesChanged = true;
        m_changed();
    });
}

void NetworkReport::print(ReadableLines& lines) {
    m_states.print(lines);
    if (!std::exchange(m_devicesChanged, false))
        return;
    for (const LocalNetworkDevice& device : m_browser.devices())
        printDevice(device, lines);
    if (m_told.size() > m_browser.devices().size())
        forgetUnknown(lines);
}

void NetworkReport::forgetUnknown(ReadableLines& lines) {
    std::erase_if(m_told, [&](const auto& entry) {
        const auto& [id, told] = entry;
        if (m_browser.deviceWith(id))
            return false;
        if (!told.watch.empty())
            lines.print("no longer tracking " + told.watchedName);
        return true;
    });
}

void NetworkReport::printDevice(const LocalNetworkDevice& device, ReadableLines& lines) {
    Told& told = m_told[device.id];
    const std::string name = "network device " + terminalSafe(device.name, mostOfAName);
    if (device.isOnline && !told.isOnline)
        lines.printOrCount(name + ": " + terminalSafe(device.serviceSummary(), mostOfServices));
    else if (!device.isOnline && told.isOnline && m_browser.isScanning())
        lines.printOrCount(name + " is gone");
    told.isOnline = device.isOnline;

    // What the user chose is told however much else there is.
    auto watch = watchOf(device);
    if (watch == told.watch)
        return;
    const auto watched = terminalSafe(device.name, mostOfAName);
    lines.print(watch.empty() ? "no longer tracking " + watched : watch);
    told.watchedName = watch.empty() ? std::string() : watched;
    told.watch = std::move(watch);
}

} // namespace nightjar::headless
