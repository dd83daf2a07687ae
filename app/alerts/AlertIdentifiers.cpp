// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/alerts/AlertIdentifiers.h"

#include "core/base/Text.h"

namespace nightjar::AlertIdentifiers {

namespace {

constexpr std::string_view messagePrefix = "message-";

std::string timeText(Date now) {
    return shortestText(unixSeconds(now));
}

} // namespace

std::string message(const Uuid& message) {
    return std::string(messagePrefix) + message.text();
}

bool isMessage(std::string_view identifier) {
    return identifier.starts_with(messagePrefix);
}

std::string guardedDeviceMoved(Date now) {
    return "guarded-device-moved-" + timeText(now);
}

std::string bluetoothLost(const Uuid& device, Date now) {
    return "bluetooth-lost-" + device.text() + "-" + timeText(now);
}

std::string bluetoothReturned(const Uuid& device, Date now) {
    return "bluetooth-returned-" + device.text() + "-" + timeText(now);
}

std::string localNetworkLeft(std::string_view device) {
    return "local-network-left-" + std::string(device);
}

std::string localNetworkReturned(std::string_view device) {
    return "local-network-returned-" + std::string(device);
}

} // namespace nightjar::AlertIdentifiers
