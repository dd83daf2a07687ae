// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// Names on the bus, as in BlueZ's documentation of its D-Bus interface.
namespace nightjar::bluez {

inline const auto service = QStringLiteral("org.bluez");
inline const auto adapterInterface = QStringLiteral("org.bluez.Adapter1");
inline const auto deviceInterface = QStringLiteral("org.bluez.Device1");

inline const auto rootPath = QStringLiteral("/");
inline const auto busService = QStringLiteral("org.freedesktop.DBus");
inline const auto busPath = QStringLiteral("/org/freedesktop/DBus");
inline const auto objectManager = QStringLiteral("org.freedesktop.DBus.ObjectManager");
inline const auto propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
inline const auto peerInterface = QStringLiteral("org.freedesktop.DBus.Peer");

inline bool isRefusal(const QString& error) {
    return error == QLatin1String("org.freedesktop.DBus.Error.AccessDenied") ||
           error == QLatin1String("org.bluez.Error.NotAuthorized") ||
           error == QLatin1String("org.bluez.Error.NotPermitted");
}

} // namespace nightjar::bluez
