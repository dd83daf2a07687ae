// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <chrono>
#include <functional>

namespace nightjar {

/// One method call on a message bus.
struct BusCall {
    QString service;
    QString path;
    QString interface;
    QString method;
    QVariantList arguments{};
    /// Without an answer it is given up after this long.
    std::chrono::milliseconds limit = std::chrono::seconds(10);
    /// Whether the bus may start the service for it.
    bool startsService = false;
};

/// Later and exactly once, unless `context` goes before, `answered` is given the answer: a reply, an error,
/// or an invalid message when the bus is not connected. Main thread.
void callLater(const QDBusConnection& bus, QObject& context, const BusCall& call,
               std::function<void(const QDBusMessage&)> answered);

/// Waits for the answer, up to the call's limit, without running the event loop.
[[nodiscard]] QDBusMessage callAndWait(const QDBusConnection& bus, const BusCall& call);

/// Whether the answer is an error that says that nobody has the name which was called.
[[nodiscard]] bool isNobodyThere(const QDBusMessage& answer);

/// Whether nobody answered in time.
[[nodiscard]] bool isSilence(const QDBusMessage& answer);

/// What an error says for the user: its text, cut to a sensible length, else its name; empty when it says
/// nothing.
[[nodiscard]] QString errorText(const QDBusMessage& answer);

} // namespace nightjar
