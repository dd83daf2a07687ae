// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/Published.h"
#include "core/bluetooth/TrackedBluetoothDevice.h"
#include "platform/PlatformServices.h"

#include <deque>
#include <functional>
#include <string>

namespace nightjar {

/// Tells the user of devices that are no longer heard and of those that are again, and keeps how. Main
/// thread. A text message holds up the thread until it is taken or refused: those of several devices go out
/// one in each turn of the event loop, after the notifications of all of them.
class LossAlertDelivery {
public:
    struct Announcers {
        Announcer messagesEnabled;
        Announcer recipient;
        Announcer status;
    };

    /// Starts with what was kept. `onFailure` is given a sentence for each message that could not be sent.
    LossAlertDelivery(const PlatformServices& platform, const Announcers& announcers,
                      std::function<void(const std::string&)> onFailure);

    [[nodiscard]] bool isMessagesEnabled() const { return m_messagesEnabled.get(); }
    [[nodiscard]] const std::string& recipient() const { return m_recipient.get(); }
    [[nodiscard]] const std::string& status() const { return m_status.get(); }
    /// Both are kept at once.
    void setMessagesEnabled(bool enabled);
    void setRecipient(const std::string& recipient);
    /// Says whether messages are set up; what came of the latest one is forgotten.
    void updateStatus();

    void requestPermission() { m_platform.notifications.requestPermission(); }
    void tellLost(const TrackedBluetoothDevice& device);
    void tellReturned(const TrackedBluetoothDevice& device);
    /// Sends the message of what was told; to be called when all of it was.
    void deliver();
    /// Sends a message at once and even when messages are off.
    void sendTest();

private:
    struct Message {
        std::string text;
        const char* success; ///< what the status says of it, before the time of day
    };

    void sendIfEnabled(Message message);
    void sendNext();
    void send(const std::string& text, const std::string& success, const char* failure);
    [[nodiscard]] std::string timeOfDay() const;

    PlatformServices m_platform;
    std::function<void(const std::string&)> m_onFailure;
    std::deque<Message> m_waiting;
    Timer m_turn; ///< runs until the end of a turn in which a message was sent
    Published<bool> m_messagesEnabled;
    Published<std::string> m_recipient;
    Published<std::string> m_status;
};

} // namespace nightjar
