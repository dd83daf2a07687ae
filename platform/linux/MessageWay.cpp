// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/MessageWay.h"

#include <algorithm>
#include <string_view>

namespace nightjar {

QDBusMessage BoundedBus::call(BusCall call) const {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(m_deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0)
        return QDBusMessage::createError(QDBusError::NoReply, QStringLiteral("The time was up."));
    call.limit = std::min(call.limit, left);
    return callAndWait(m_bus, call);
}

void BoundedBus::send(const BusCall& call) const {
    auto message = QDBusMessage::createMethodCall(call.service, call.path, call.interface, call.method);
    message.setArguments(call.arguments);
    message.setAutoStartService(false);
    m_bus.send(message);
}

SendingResult refusal(const QDBusMessage& answer) {
    const auto text = answer.errorMessage().trimmed();
    MessageTransportError error;
    if (!text.isEmpty())
        error.message = errorText(answer).toStdString();
    return std::unexpected(error);
}

SendingResult refusal(const char* message) {
    return std::unexpected(MessageTransportError{.message = message});
}

std::optional<QString> phoneNumber(const std::string& recipient) {
    constexpr std::string_view separators = " \t-./()";
    constexpr qsizetype shortest = 3;
    constexpr qsizetype longest = 20;
    QString number;
    for (const char character : recipient) {
        const bool isPlus = character == '+' && number.isEmpty();
        if (isPlus || (character >= '0' && character <= '9'))
            number += QLatin1Char(character);
        else if (!separators.contains(character))
            return std::nullopt;
    }
    return number.size() >= shortest && number.size() <= longest ? std::optional(number) : std::nullopt;
}

} // namespace nightjar
