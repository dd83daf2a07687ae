// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/MessageTransport.h"
#include "platform/linux/BusCall.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>

#include <chrono>
#include <optional>

namespace nightjar {

/// How long a text message may keep its sender waiting.
struct MessageLimits {
    std::chrono::milliseconds bus = std::chrono::seconds(1);      ///< for a bus that is not open yet
    std::chrono::milliseconds answer = std::chrono::seconds(5);   ///< for one answer
    std::chrono::milliseconds sending = std::chrono::seconds(30); ///< for the network to take the message
    std::chrono::milliseconds total = std::chrono::seconds(40);   ///< for everything together
};

/// The instant up to which one message may take.
using MessageDeadline = std::chrono::steady_clock::time_point;

/// A bus for calls that are waited for, none past the deadline.
class BoundedBus {
public:
    BoundedBus(QDBusConnection bus, MessageDeadline deadline) : m_bus(std::move(bus)), m_deadline(deadline) {}

    [[nodiscard]] QDBusMessage call(BusCall call) const;
    /// A call whose answer does not matter; nothing is waited for.
    void send(const BusCall& call) const;

private:
    QDBusConnection m_bus;
    MessageDeadline m_deadline;
};

/// What became of a message; absent when this way of sending is not there.
using SendingResult = std::optional<std::expected<void, MessageTransportError>>;

/// The service's error with what it says, if it says anything.
[[nodiscard]] SendingResult refusal(const QDBusMessage& answer);
[[nodiscard]] SendingResult refusal(const char* message);

/// The number as a network takes it: digits, after a plus sign if there is one. Absent when the recipient is
/// something else, such as the address of an account.
[[nodiscard]] std::optional<QString> phoneNumber(const std::string& recipient);

inline constexpr const char* noPhoneNumber = "Text messages from this computer need a phone number.";

} // namespace nightjar
