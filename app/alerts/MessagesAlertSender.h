// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/MessageTransport.h"

#include <expected>
#include <string>
#include <string_view>

namespace nightjar {

/// Why a text message was not sent.
class MessagesAlertError {
public:
    [[nodiscard]] static MessagesAlertError missingRecipient() { return MessagesAlertError({}); }
    [[nodiscard]] static MessagesAlertError scriptFailed(const std::string& reason) {
        return MessagesAlertError("Messages could not send the alert: " + reason);
    }

    /// For the user.
    [[nodiscard]] std::string errorDescription() const {
        return m_failure.empty() ? "Enter an iPhone phone number or Apple Account email address first."
                                 : m_failure;
    }
    bool operator==(const MessagesAlertError&) const = default;

private:
    explicit MessagesAlertError(std::string failure) : m_failure(std::move(failure)) {}

    std::string m_failure; ///< empty: there was nobody to send to
};

/// Sends alerts as text messages.
struct MessagesAlertSender {
    /// Waits until the message has been accepted or refused. White space around the recipient is left out.
    [[nodiscard]] static std::expected<void, MessagesAlertError>
    send(MessageTransport& transport, const std::string& text, std::string_view recipient);
};

} // namespace nightjar
