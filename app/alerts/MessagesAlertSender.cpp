// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/alerts/MessagesAlertSender.h"

#include "core/base/Text.h"

namespace nightjar {

namespace {

/// For a string literal of the script.
std::string escaped(std::string_view text) {
    std::string result;
    for (const char byte : text) {
        switch (byte) {
        case '\\':
            result += "\\\\";
            break;
        case '"':
            result += "\\\"";
            break;
        case '\r':
            result += "\\r";
            break;
        case '\n':
            result += "\\n";
            break;
        default:
            result += byte;
        }
    }
    return result;
}

std::string script(std::string_view text, std::string_view recipient) {
    return "tell application \"Messages\"\n"
           "    set targetService to first service whose service type = iMessage\n"
           "    set targetRecipient to buddy \"" +
           escaped(recipient) +
           "\" of targetService\n"
           "    send \"" +
           escaped(text) +
           "\" to targetRecipient\n"
           "end tell";
}

std::string reason(const MessageTransportError& error) {
    if (error.isScriptInvalid)
        return "The automation script could not be created.";
    return error.message.value_or("").empty() ? "Unknown automation error." : *error.message;
}

} // namespace

std::expected<void, MessagesAlertError>
MessagesAlertSender::send(MessageTransport& transport, const std::string& text, std::string_view recipient) {
    const auto to = trimmed(recipient);
    if (to.empty())
        return std::unexpected(MessagesAlertError::missingRecipient());
    const auto sent =
        transport.send({.recipient = std::string(to), .text = text, .script = script(text, to)});
    if (!sent)
        return std::unexpected(MessagesAlertError::scriptFailed(reason(sent.error())));
    return {};
}

} // namespace nightjar
