// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <vector>

namespace nightjar {

/// A notification daemon on a connection of its own; it goes from the bus with the object. It numbers what it
/// shows from 1 and remembers what it was told.
class FakeNotificationDaemon : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    struct Call {
        QString application;
        uint replaces = 0;
        QString icon;
        QString title;
        QString body;
        QStringList actions;
        QVariantMap hints;
        int timeout = 0;
    };

    FakeNotificationDaemon(QDBusConnection bus, QStringList capabilities);
    ~FakeNotificationDaemon() override;

    std::vector<Call> calls;
    int capabilityQuestions = 0;
    /// While true, calls stay without an answer.
    bool silent = false;

public Q_SLOTS:
    QStringList GetCapabilities();
    uint Notify(const QString& application, uint replaces, const QString& icon, const QString& title,
                const QString& body, const QStringList& actions, const QVariantMap& hints, int timeout);

Q_SIGNALS:
    void NotificationClosed(uint number, uint reason);

private:
    QDBusConnection m_bus;
    QStringList m_capabilities;
    uint m_lastNumber = 0;
};

} // namespace nightjar
