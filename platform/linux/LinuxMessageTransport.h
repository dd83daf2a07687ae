// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/MessageTransport.h"
#include "platform/linux/BusConnector.h"
#include "platform/linux/MessageWay.h"

namespace nightjar {

/// Text messages from this computer: by a modem of its own, else by a paired phone. The first of them that is
/// there decides; neither is started for it. Main thread; `send` waits, up to the limits, and runs no event
/// loop meanwhile.
class LinuxMessageTransport final : public MessageTransport {
public:
    LinuxMessageTransport(BusConnector& systemBus, BusConnector& sessionBus, MessageLimits limits = {})
        : m_systemBus(systemBus), m_sessionBus(sessionBus), m_limits(limits) {}

    [[nodiscard]] std::expected<void, MessageTransportError> send(const OutgoingText& text) override;

private:
    BusConnector& m_systemBus;
    BusConnector& m_sessionBus;
    MessageLimits m_limits;
};

} // namespace nightjar
