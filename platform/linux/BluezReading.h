// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

/// Reads what the Bluetooth daemon sends. The signature of a message is checked before it is taken apart; of
/// a property only the value's type is certain once it has been asked for.
namespace nightjar::bluez {

/// The value if it has exactly this type on the bus.
template <class T>
[[nodiscard]] std::optional<T> valueOf(const QVariant& value) {
    if (value.typeId() != qMetaTypeId<T>())
        return std::nullopt;
    return value.value<T>();
}

/// Calls `take(name, value)` for each entry of an `a{sv}`.
template <class Take>
void readProperties(const QDBusArgument& dictionary, Take&& take) {
    dictionary.beginMap();
    while (!dictionary.atEnd()) {
        QString name;
        QDBusVariant value;
        dictionary.beginMapEntry();
        dictionary >> name >> value;
        dictionary.endMapEntry();
        take(name, value.variant());
    }
    dictionary.endMap();
}

/// Calls `takeProperties(interface, dictionary)` for each entry of an `a{sa{sv}}`; it must read each one.
template <class TakeProperties>
void readInterfaces(const QDBusArgument& interfaces, TakeProperties&& takeProperties) {
    interfaces.beginMap();
    while (!interfaces.atEnd()) {
        QString name;
        interfaces.beginMapEntry();
        interfaces >> name;
        takeProperties(name, interfaces);
        interfaces.endMapEntry();
    }
    interfaces.endMap();
}

/// Calls `takeInterfaces(path, interfaces)` for each entry of an `a{oa{sa{sv}}}`; it must read each one.
template <class TakeInterfaces>
void readObjects(const QDBusArgument& objects, TakeInterfaces&& takeInterfaces) {
    objects.beginMap();
    while (!objects.atEnd()) {
        QDBusObjectPath path;
        objects.beginMapEntry();
        objects >> path;
        takeInterfaces(path.path(), objects);
        objects.endMapEntry();
    }
    objects.endMap();
}

[[nodiscard]] inline QDBusArgument argumentOf(const QDBusMessage& message, int index) {
    return message.arguments().at(index).value<QDBusArgument>();
}

} // namespace nightjar::bluez
