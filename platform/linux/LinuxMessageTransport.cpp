// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/LinuxMessageTransport.h"

#include "platform/linux/KdeConnectMessages.h"
#include "platform/linux/ModemMessages.h"

namespace nightjar {

std::expected<void, MessageTransportError> LinuxMessageTransport::send(const OutgoingText& text) {
    const auto deadline = std::chrono::steady_clock::now() + m_limits.total;
    // The first message may be what opens the buses.
    m_systemBus.openNow();
    m_sessionBus.openNow();
    if (auto result = sendByModem({m_systemBus.busWithin(m_limits.bus), deadline}, text, m_limits))
        return *result;
    if (auto result = sendByPhone({m_sessionBus.busWithin(m_limits.bus), deadline}, text, m_limits))
        return *result;
    return std::unexpected(
        MessageTransportError{.message = "No modem or paired phone that can send text messages was found."});
}

} // namespace nightjar
