// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// Names on the message bus.
namespace nightjar::avahi {

inline const auto service = QStringLiteral("org.freedesktop.Avahi");
inline const auto rootPath = QStringLiteral("/");
inline const auto server = QStringLiteral("org.freedesktop.Avahi.Server");
inline const auto server2 = QStringLiteral("org.freedesktop.Avahi.Server2");
inline const auto serviceBrowser = QStringLiteral("org.freedesktop.Avahi.ServiceBrowser");
inline const auto timeoutError = QStringLiteral("org.freedesktop.Avahi.TimeoutError");
inline const auto busService = QStringLiteral("org.freedesktop.DBus");
inline const auto busPath = QStringLiteral("/org/freedesktop/DBus");

/// Any interface, any protocol.
inline constexpr int unspecified = -1;
/// Of an answer (avahi-common/defs.h): out of the daemon's memory.
inline constexpr unsigned resultCached = 1;
/// Of an answer: announced by this computer.
inline constexpr unsigned resultLocal = 8;
/// Of a question: neither texts nor addresses.
inline constexpr unsigned lookupNoTextNoAddress = 4 | 8;

} // namespace nightjar::avahi
