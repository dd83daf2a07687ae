// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/linux/GeoclueLocationSource.h"
#include "platform/linux/QtMainThread.h"
#include "platform/simulated/FakeScheduler.h"
#include "tests/desktop/ScriptedService.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/EventLoop.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace nightjar {

/// The service's time of a location.
struct GeoclueStamp {
    quint64 seconds = 0;
    quint64 microseconds = 0;
};

inline QDBusArgument& operator<<(QDBusArgument& argument, const GeoclueStamp& stamp) {
    argument.beginStructure();
    argument << stamp.seconds << stamp.microseconds;
    argument.endStructure();
    return argument;
}

inline const QDBusArgument& operator>>(const QDBusArgument& argument, GeoclueStamp& stamp) {
    argument.beginStructure();
    argument >> stamp.seconds >> stamp.microseconds;
    argument.endStructure();
    return argument;
}

} // namespace nightjar
Q_DECLARE_METATYPE(nightjar::GeoclueStamp)

namespace nightjar {

inline const auto geoclueService = QStringLiteral("org.freedesktop.GeoClue2");
inline const auto geoclueClient = QStringLiteral("/org/freedesktop/GeoClue2/Client/7");
inline const auto geoclueClientInterface = QStringLiteral("org.freedesktop.GeoClue2.Client");
inline const auto geoclueLocation = QStringLiteral("/org/freedesktop/GeoClue2/Client/7/Location/1");

inline const QVariantMap amsterdam{{QStringLiteral("Latitude"), 52.37},
                                   {QStringLiteral("Longitude"), 4.9},
                                   {QStringLiteral("Accuracy"), 25.0}};

/// As `amsterdam`, with one property replaced, or without it.
inline QVariantMap amsterdamBut(const char* property, const QVariant& value = {}) {
    auto properties = amsterdam;
    if (value.isValid())
        properties[QString::fromLatin1(property)] = value;
    else
        properties.remove(QString::fromLatin1(property));
    return properties;
}

/// The location source and, once it was started, the service on a bus of their own.
class GeoclueRig : public ::testing::Test {
protected:
    GeoclueRig() {
        qDBusRegisterMetaType<GeoclueStamp>();
        source.setListener(
            {.onAuthorizationChanged = [this] { authorizations.push_back(source.authorization()); },
             .onFixes = [this](const auto& heard) { fixes.insert(fixes.end(), heard.begin(), heard.end()); },
             .onError = [this](const auto& error) { errors.push_back(error); }},
            LocationSource::Wishes{.distanceFilter = 50});
    }

    void startService() {
        service.reset();
        service = std::make_unique<ScriptedService>(bus.connect(), geoclueService,
                                                    QStringLiteral("/org/freedesktop"));
        service->on("CreateClient", {QVariant::fromValue(QDBusObjectPath(geoclueClient))});
        for (const char* method : {"Set", "Start", "Stop", "DeleteClient"})
            service->on(method, QVariantList());
        service->on("GetAll", {amsterdam});
    }

    void tellOfLocation() { tellOfLocation(*service); }
    void tellOfLocation(ScriptedService& sender) {
        sender.tell(geoclueClient, geoclueClientInterface, QStringLiteral("LocationUpdated"),
                    {QVariant::fromValue(QDBusObjectPath(QStringLiteral("/"))),
                     QVariant::fromValue(QDBusObjectPath(geoclueLocation))});
    }

    bool isCalled(const char* method, std::size_t times = 1) {
        return runEventsUntil([&] { return service->count(method) >= times; });
    }
    /// The service has been told to forget the client, and everything before that has been worked off.
    bool isClosed(std::size_t times = 1) { return isCalled("DeleteClient", times); }

    PrivateBus bus;
    std::unique_ptr<ScriptedService> service;
    QtMainThread mainThread;
    FakeScheduler scheduler;
    BusConnector connector{mainThread, scheduler, [this] { return bus.connect(); }};
    GeoclueLocationSource source{connector, scheduler, QStringLiteral("nightjar")};
    std::vector<LocationAuthorization> authorizations;
    std::vector<LocationFix> fixes;
    std::vector<LocationError> errors;
};

} // namespace nightjar
