// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/NetworkTable.h"

#include "app/headless/TableBuilder.h"
#include "core/network/NetworkJson.h"

#include <expected>
#include <string>

namespace nightjar::headless {
namespace {

using Browser = LocalNetworkBrowser;
using Refusal = std::expected<void, std::string>;

std::unexpected<std::string> unknown(const std::string& id) {
    return std::unexpected("No device with the identifier \"" + id + "\" is known.");
}

/// Carries out `act` on a device that is known.
template <class Act>
Refusal ifKnown(const Browser& browser, const std::string& id, Act act) {
    if (!browser.deviceWith(id))
        return unknown(id);
    act();
    return {};
}

Refusal track(Browser& browser, const std::string& id) {
    return ifKnown(browser, id, [&] { browser.track(id); });
}

Refusal stopTracking(Browser& browser, const std::string& id) {
    return ifKnown(browser, id, [&] { browser.stopTracking(id); });
}

Refusal forget(Browser& browser, const std::string& id) {
    return ifKnown(browser, id, [&] { browser.forget(id); });
}

Refusal setLossAlert(Browser& browser, bool enabled, const std::string& id) {
    return ifKnown(browser, id, [&] { browser.setLossAlert(enabled, id); });
}

Refusal setLossAlertDelay(Browser& browser, double delay, const std::string& id) {
    return ifKnown(browser, id, [&] { browser.setLossAlertDelay(delay, id); });
}

/// The status line of a device; of one that is not known, that.
std::string monitoringStatus(Browser& browser, const std::string& id) {
    const auto* device = browser.deviceWith(id);
    return device ? browser.monitoringStatus(*device) : unknown(id).error();
}

} // namespace

ControllerTable networkTable(LocalNetworkBrowser& browser) {
    using B = Browser;
    return TableBuilder("LocalNetworkBrowser", browser)
        .list<ChangingRecords>("devices", &B::devices, &B::devicesChanged)
        .published("state", &B::state, &B::stateChanged)
        .published("isScanning", &B::isScanning, &B::isScanningChanged)
        .settable("errorMessage", &B::errorMessage, &B::setErrorMessage, &B::errorMessageChanged)
        .operation("start", &B::start)
        .operation("stop", &B::stop)
        .operation("track", &track)
        .operation("stopTracking", &stopTracking)
        .operation("forget", &forget)
        .operation("setLossAlert", &setLossAlert)
        .operation("setLossAlertDelay", &setLossAlertDelay)
        .operation("monitoringStatus", &monitoringStatus)
        .build();
}

} // namespace nightjar::headless
