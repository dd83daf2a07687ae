// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/BluezNames.h"
#include "tests/platform/StandInBluetoothd.h"

#include <QDBusMessage>
#include <QDBusObjectPath>

#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

namespace nightjar {

void StandInBluetoothd::change(const QString& path, const QString& interface, const QVariantMap& changed,
                               const QStringList& invalidated) {
    auto signal =
        QDBusMessage::createSignal(path, bluez::propertiesInterface, QStringLiteral("PropertiesChanged"));
    signal << interface << changed << invalidated;
    m_bus.send(signal);
}

void StandInBluetoothd::signalAdded(const QString& path, const QString& interface,
                                    const QVariantMap& properties) {
    auto signal =
        QDBusMessage::createSignal(bluez::rootPath, bluez::objectManager, QStringLiteral("InterfacesAdded"));
    signal << QVariant::fromValue(QDBusObjectPath(path))
           << QVariant::fromValue(DBusInterfaces{{interface, properties}});
    m_bus.send(signal);
}

void StandInBluetoothd::signalRemoved(const QString& path, const QString& interface) {
    auto signal = QDBusMessage::createSignal(bluez::rootPath, bluez::objectManager,
                                             QStringLiteral("InterfacesRemoved"));
    signal << QVariant::fromValue(QDBusObjectPath(path)) << QStringList{interface};
    m_bus.send(signal);
}

void StandInBluetoothd::flood(const QString& name, int devices, int rate, int count) {
    using Clock = std::chrono::steady_clock;
    std::vector<QDBusMessage> messages;
    for (int i = 0; i < devices; ++i) {
        const auto address = QStringLiteral("F0:00:00:00:00:%1").arg(i, 2, 16, QLatin1Char('0')).toUpper();
        receive(name, address, -60, {});
        auto signal = QDBusMessage::createSignal(device(name, address).path, bluez::propertiesInterface,
                                                 QStringLiteral("PropertiesChanged"));
        signal << bluez::deviceInterface
               << QVariantMap{{QStringLiteral("RSSI"),
                               QVariant::fromValue<short>(static_cast<short>(-90 + i % 50))}}
               << QStringList();
        messages.push_back(signal);
    }
    // The bus answers once it has taken what was sent before, so that no more than a step ever waits here.
    const auto taken = QDBusMessage::createMethodCall(bluez::busService, bluez::busPath, bluez::busService,
                                                      QStringLiteral("GetId"));
    const int step = rate > 0 ? std::max(1, rate / 100) : 1'000;
    const auto start = Clock::now();
    for (int sent = 0; sent < count;) {
        for (int end = std::min(sent + step, count); sent < end; ++sent)
            m_bus.send(messages[static_cast<std::size_t>(sent % devices)]);
        m_bus.call(taken);
        if (rate > 0)
            std::this_thread::sleep_until(start +
                                          std::chrono::microseconds(std::int64_t{1'000'000} * sent / rate));
    }
}

} // namespace nightjar
