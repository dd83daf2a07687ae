// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/LocationSource.h"
#include "platform/Scheduler.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <chrono>
#include <functional>

namespace nightjar {

/// Our client in the desktop's location service (org.freedesktop.GeoClue2), from its creation to `close`.
/// Main thread; every call is asynchronous and bounded. After `failed` there is nothing left but to close.
class GeoclueClient final : public QObject {
    Q_OBJECT
public:
    struct Settings {
        QString desktopId;                 ///< name of the program's .desktop file, without the ending
        unsigned distanceThreshold = 0;    ///< metres
        std::chrono::milliseconds limit{}; ///< for an answer that may have to wait for the user
    };
    struct Failure {
        enum class Kind { denied, temporary, other };
        Kind kind = Kind::temporary;
        QString text{}; ///< for the user
    };

    /// Opens the client. `parent` owns it.
    GeoclueClient(QDBusConnection bus, const Scheduler& scheduler, Settings settings, QObject& parent);

    /// Reads the latest location that the service has told of, if there is one.
    void readLocation();
    /// Tells the service that the client is no longer needed. Nothing is signalled from here on, and the
    /// object goes later by itself.
    void close();

Q_SIGNALS:
    /// Access has been granted.
    void started();
    /// The service tells of a location; `readLocation` reads it.
    void locationAvailable();
    /// What was read, if it made sense.
    void located(const nightjar::LocationFix& fix);
    void failed(const nightjar::GeoclueClient::Failure& failure);

private Q_SLOTS:
    void nameOwnerChanged(const QDBusMessage& signal);
    void locationUpdated(const QDBusMessage& signal);

private:
    void create();
    void created(const QDBusMessage& answer);
    void start();
    void set(const char* property, const QVariant& value);
    void locationRead(const QDBusMessage& answer);
    /// Calls the service that made the client; its errors end the client.
    void call(const QString& path, const QString& interface, const QString& method,
              const QVariantList& arguments, std::function<void(const QDBusMessage&)> succeeded);
    void fail(const QDBusMessage& answer);
    void endWith(const Failure& failure);
    static void destroy(const QDBusConnection& bus, QObject& context, const QString& owner,
                        const QString& path);

    QDBusConnection m_bus;
    const Scheduler& m_scheduler;
    Settings m_settings;
    QString m_owner;    ///< the service's unique name; empty until the client was created
    QString m_path;     ///< of the client
    QString m_location; ///< path of the latest location
    bool m_isOver = false;
};

} // namespace nightjar
