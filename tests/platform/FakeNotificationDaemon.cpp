// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/FakeNotificationDaemon.h"

#include <gtest/gtest.h>

namespace nightjar {

FakeNotificationDaemon::FakeNotificationDaemon(QDBusConnection bus, QStringList capabilities)
    : m_bus(std::move(bus)), m_capabilities(std::move(capabilities)) {
    EXPECT_TRUE(m_bus.registerObject(QStringLiteral("/org/freedesktop/Notifications"), this,
                                     QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
    EXPECT_TRUE(m_bus.registerService(QStringLiteral("org.freedesktop.Notifications")));
}

FakeNotificationDaemon::~FakeNotificationDaemon() {
    QDBusConnection::disconnectFromBus(m_bus.name());
}

QStringList FakeNotificationDaemon::GetCapabilities() {
    ++capabilityQuestions;
    if (silent)
        setDelayedReply(true);
    return m_capabilities;
}

uint FakeNotificationDaemon::Notify(const QString& application, uint replaces, const QString& icon,
                                    const QString& title, const QString& body, const QStringList& actions,
                                    const QVariantMap& hints, int timeout) {
    calls.push_back({application, replaces, icon, title, body, actions, hints, timeout});
    if (silent)
        setDelayedReply(true);
    return replaces != 0 ? replaces : ++m_lastNumber;
}

} // namespace nightjar
