// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/bluetooth/LossAlertDelivery.h"

#include "app/alerts/AlertIdentifiers.h"
#include "app/alerts/MessagesAlertSender.h"
#include "app/bluetooth/BluetoothTexts.h"
#include "app/bluetooth/LossAlertMonitor.h"
#include "core/base/Text.h"

#include <string_view>

namespace nightjar {

namespace {

constexpr std::string_view enabledKey = "bluetoothLossIMessageEnabled";
constexpr std::string_view recipientKey = "bluetoothLossIMessageRecipient";

} // namespace

LossAlertDelivery::LossAlertDelivery(const PlatformServices& platform, const Announcers& announcers)
    : m_platform(platform),
      m_messagesEnabled(announcers.messagesEnabled, platform.preferences.boolean(enabledKey).value_or(false)),
      m_recipient(announcers.recipient, platform.preferences.string(recipientKey).value_or("")),
      m_status(announcers.status, "Not configured") {
    updateStatus();
}

void LossAlertDelivery::setMessagesEnabled(bool enabled) {
    m_platform.preferences.setBoolean(enabledKey, enabled);
    m_messagesEnabled.set(enabled);
}

void LossAlertDelivery::setRecipient(const std::string& recipient) {
    m_platform.preferences.setString(recipientKey, recipient);
    m_recipient.set(recipient);
}

void LossAlertDelivery::updateStatus() {
    if (trimmed(recipient()).empty()) {
        m_status.set("Not configured");
    } else {
        m_status.set(isMessagesEnabled() ? "Enabled" : "Ready, but off");
    }
}

std::optional<std::string> LossAlertDelivery::tellLost(const TrackedBluetoothDevice& device) {
    const std::string title = device.name + " is no longer nearby";
    const std::string body = "No Bluetooth signal has been received for " +
                             BluetoothTexts::lossDelayDescription(LossAlertMonitor::delayOf(device)) + ".";
    m_platform.notifications.post(
        {.identifier = AlertIdentifiers::bluetoothLost(device.id, m_platform.scheduler.now()),
         .title = title,
         .body = body + " Check whether the device is still nearby.",
         .sound = NotificationSound::standard});
    return sendIfEnabled("Nightjar alert: " + title + ". " + body, "Last alert sent at ");
}

std::optional<std::string> LossAlertDelivery::tellReturned(const TrackedBluetoothDevice& device) {
    const std::string title = device.name + " is nearby again";
    m_platform.notifications.post(
        {.identifier = AlertIdentifiers::bluetoothReturned(device.id, m_platform.scheduler.now()),
         .title = title,
         .body = "Nightjar is receiving its Bluetooth signal again.",
         .sound = NotificationSound::standard});
    return sendIfEnabled("Nightjar update: " + title + ". Its Bluetooth signal has returned.",
                         "Last update sent at ");
}

std::optional<std::string> LossAlertDelivery::sendIfEnabled(const std::string& text, const char* success) {
    if (!isMessagesEnabled())
        return std::nullopt;
    const auto sent = MessagesAlertSender::send(m_platform.messages, text, recipient());
    m_status.set(sent ? success + timeOfDay() : "Last delivery failed");
    return sent ? std::nullopt : std::optional(sent.error().errorDescription());
}

std::optional<std::string> LossAlertDelivery::sendTest() {
    const auto sent = MessagesAlertSender::send(
        m_platform.messages, "Nightjar test alert. Messages delivery is working on this Mac.", recipient());
    m_status.set(sent ? "Test message sent" : "Could not send");
    return sent ? std::nullopt : std::optional(sent.error().errorDescription());
}

std::string LossAlertDelivery::timeOfDay() const {
    return m_platform.text.shortTimeOfDay(m_platform.scheduler.now());
}

} // namespace nightjar
