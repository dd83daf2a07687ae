// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/Published.h"
#include "core/bluetooth/TrackedBluetoothDevice.h"
#include "platform/PlatformServices.h"

#include <optional>
#include <string>

namespace nightjar {

/// Tells the user of devices that are no longer heard and of those that are again, and keeps how. Main
/// thread. What can fail answers with a sentence for the user where it did.
class LossAlertDelivery {
public:
    struct Announcers {
        Announcer messagesEnabled;
        Announcer recipient;
        Announcer status;
    };

    /// Starts with what was kept.
    LossAlertDelivery(const PlatformServices& platform, const Announcers& announcers);

    [[nodiscard]] bool isMessagesEnabled() const { return m_messagesEnabled.get(); }
    [[nodiscard]] const std::string& recipient() const { return m_recipient.get(); }
    [[nodiscard]] const std::string& status() const { return m_status.get(); }
    /// Both are kept at once.
    void setMessagesEnabled(bool enabled);
    void setRecipient(const std::string& recipient);
    /// Says whether messages are set up; what came of the latest one is forgotten.
    void updateStatus();

    void requestPermission() { m_platform.notifications.requestPermission(); }
    [[nodiscard]] std::optional<std::string> tellLost(const TrackedBluetoothDevice& device);
    [[nodiscard]] std::optional<std::string> tellReturned(const TrackedBluetoothDevice& device);
    /// Sends a message even when messages are off.
    [[nodiscard]] std::optional<std::string> sendTest();

private:
    [[nodiscard]] std::optional<std::string> sendIfEnabled(const std::string& text, const char* success);
    [[nodiscard]] std::string timeOfDay() const;

    PlatformServices m_platform;
    Published<bool> m_messagesEnabled;
    Published<std::string> m_recipient;
    Published<std::string> m_status;
};

} // namespace nightjar
