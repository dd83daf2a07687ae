// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/bluetooth/LossAlertDelivery.h"

#include "app/alerts/AlertIdentifiers.h"
#include "app/alerts/MessagesAlertSender.h"
#include "app/bluetooth/BluetoothTexts.h"
#include "app/bluetooth/LossAlertMonitor.h"
#include "core/base/Text.h"

#include <chrono>
#include <string_view>
#include <utility>

namespace nightjar {

namespace {

constexpr std::string_view enabledKey = "bluetoothLossIMessageEnabled";
constexpr std::string_view recipientKey = "bluetoothLossIMessageRecipient";

} // namespace

LossAlertDelivery::LossAlertDelivery(const PlatformServices& platform, const Announcers& announcers,
                                     std::function<void(const std::string&)> onFailure)
    : m_platform(platform),
      m_onFailure(std::move(onFailure)),
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

void LossAlertDelivery::tellLost(const TrackedBluetoothDevice& device) {
    const std::string title = device.name + " is no longer nearby";
    const std::string body = "No Bluetooth signal has been received for " +
                             BluetoothTexts::lossDelayDescription(LossAlertMonitor::delayOf(device)) + ".";
    m_platform.notifications.post(
        {.identifier = AlertIdentifiers::bluetoothLost(device.id, m_platform.scheduler.now()),
         .title = title,
         .body = body + " Check whether the device is still nearby.",
         .sound = NotificationSound::standard});
    sendIfEnabled({"Nightjar alert: " + title + ". " + body, "Last alert sent at "});
}

void LossAlertDelivery::tellReturned(const TrackedBluetoothDevice& device) {
    const std::string title = device.name + " is nearby again";
    m_platform.notifications.post(
        {.identifier = AlertIdentifiers::bluetoothReturned(device.id, m_platform.scheduler.now()),
         .title = title,
         .body = "Nightjar is receiving its Bluetooth signal again.",
         .sound = NotificationSound::standard});
    sendIfEnabled(
        {"Nightjar update: " + title + ". Its Bluetooth signal has returned.", "Last update sent at "});
}

void LossAlertDelivery::sendIfEnabled(Message message) {
    if (!isMessagesEnabled())
        return;
    m_waiting.push_back(std::move(message));
}

void LossAlertDelivery::deliver() {
    if (!m_turn)
        sendNext();
}

void LossAlertDelivery::sendNext() {
    m_turn.cancel();
    if (m_waiting.empty())
        return;
    const Message message = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_turn = m_platform.scheduler.after(std::chrono::milliseconds(0), [this] { sendNext(); });
    send(message.text, message.success, "Last delivery failed");
}

void LossAlertDelivery::sendTest() {
    send("Nightjar test alert. Messages delivery is working on this Mac.", {}, "Could not send");
}

/// Without words for the success it was the test.
void LossAlertDelivery::send(const std::string& text, const std::string& success, const char* failure) {
    const auto sent = MessagesAlertSender::send(m_platform.messages, text, recipient());
    if (sent) {
        m_status.set(success.empty() ? "Test message sent" : success + timeOfDay());
        return;
    }
    m_status.set(failure);
    m_onFailure(sent.error().errorDescription());
}

std::string LossAlertDelivery::timeOfDay() const {
    return m_platform.text.shortTimeOfDay(m_platform.scheduler.now());
}

} // namespace nightjar
