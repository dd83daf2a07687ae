// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <expected>
#include <optional>
#include <string>

namespace nightjar {

/// A text message on its way out.
struct OutgoingText {
    std::string recipient; ///< phone number or account address, without white space around it
    std::string text;
    std::string script; ///< the automation script that sends it, for a system that runs such scripts

    bool operator==(const OutgoingText&) const = default;
};

struct MessageTransportError {
    /// The script could not even be made.
    bool isScriptInvalid = false;
    /// What the system said, if it said anything.
    std::optional<std::string> message{};
};

/// Whatever sends text messages on this system. Main thread. `send` waits until the message has been accepted
/// or refused, which is bounded.
class MessageTransport {
public:
    virtual ~MessageTransport() = default;
    [[nodiscard]] virtual std::expected<void, MessageTransportError> send(const OutgoingText& text) = 0;
};

} // namespace nightjar
