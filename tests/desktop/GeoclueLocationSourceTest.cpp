// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/GeoclueLocationSource.h"

#include "platform/linux/QtMainThread.h"
#include "platform/simulated/FakeScheduler.h"
#include "tests/desktop/ScriptedService.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/EventLoop.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <limits>

namespace nightjar {

/// The service's time of a location.
struct Stamp {
    quint64 seconds = 0;
    quint64 microseconds = 0;
};

QDBusArgument& operator<<(QDBusArgument& argument, const Stamp& stamp) {
    argument.beginStructure();
    argument << stamp.seconds << stamp.microseconds;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Stamp& stamp) {
    argument.beginStructure();
    argument >> stamp.seconds >> stamp.microseconds;
    argument.endStructure();
    return argument;
}

} // namespace nightjar
Q_DECLARE_METATYPE(nightjar::Stamp)

namespace nightjar {
namespace {

using namespace std::chrono_literals;

const auto serviceName = QStringLiteral("org.freedesktop.GeoClue2");
const auto clientPath = QStringLiteral("/org/freedesktop/GeoClue2/Client/7");
const auto clientInterface = QStringLiteral("org.freedesktop.GeoClue2.Client");
const auto locationPath = QStringLiteral("/org/freedesktop/GeoClue2/Client/7/Location/1");
const auto accessDenied = QStringLiteral("org.freedesktop.DBus.Error.AccessDenied");

const QVariantMap amsterdam{{QStringLiteral("Latitude"), 52.37},
                            {QStringLiteral("Longitude"), 4.9},
                            {QStringLiteral("Accuracy"), 25.0}};

/// As `amsterdam`, with one property replaced, or without it.
QVariantMap amsterdamBut(const char* property, const QVariant& value = {}) {
    auto properties = amsterdam;
    if (value.isValid())
        properties[QString::fromLatin1(property)] = value;
    else
        properties.remove(QString::fromLatin1(property));
    return properties;
}

class GeoclueLocationSourceTest : public ::testing::Test {
protected:
    GeoclueLocationSourceTest() {
        qDBusRegisterMetaType<Stamp>();
        source.setListener(
            {.onAuthorizationChanged = [this] { authorizations.push_back(source.authorization()); },
             .onFixes = [this](const auto& heard) { fixes.insert(fixes.end(), heard.begin(), heard.end()); },
             .onError = [this](const auto& error) { errors.push_back(error); }},
            LocationSource::Wishes{.distanceFilter = 50});
    }

    void startService() {
        service.reset();
        service =
            std::make_unique<ScriptedService>(bus.connect(), serviceName, QStringLiteral("/org/freedesktop"));
        service->on("CreateClient", {QVariant::fromValue(QDBusObjectPath(clientPath))});
        for (const char* method : {"Set", "Start", "Stop", "DeleteClient"})
            service->on(method, QVariantList());
        service->on("GetAll", {amsterdam});
    }

    void tellOfLocation() { tellOfLocation(*service); }
    void tellOfLocation(ScriptedService& sender) {
        sender.tell(clientPath, clientInterface, QStringLiteral("LocationUpdated"),
                    {QVariant::fromValue(QDBusObjectPath(QStringLiteral("/"))),
                     QVariant::fromValue(QDBusObjectPath(locationPath))});
    }

    bool isCalled(const char* method, std::size_t times = 1) {
        return runEventsUntil([&] { return service->count(method) >= times; });
    }
    /// The service has been told to forget the client, and everything before that has been worked off.
    bool isClosed(std::size_t times = 1) { return isCalled("DeleteClient", times); }
    bool isAuthorized() {
        source.requestWhenInUseAuthorization();
        return runEventsUntil(
            [&] { return source.authorization() == LocationAuthorization::authorizedAlways; });
    }

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

TEST_F(GeoclueLocationSourceTest, findsOutAboutAccessAndLeavesTheServiceAlone) {
    startService();
    EXPECT_EQ(source.authorization(), LocationAuthorization::notDetermined);
    source.requestWhenInUseAuthorization();
    source.requestWhenInUseAuthorization();
    ASSERT_TRUE(isClosed());

    EXPECT_EQ(authorizations, std::vector{LocationAuthorization::authorizedAlways});
    EXPECT_EQ(service->count("CreateClient"), 1u);
    EXPECT_EQ(service->count("Stop"), 1u);
    EXPECT_EQ(service->count("GetAll"), 0u);
    EXPECT_EQ(scheduler.armedTimers(), 0u);
}

TEST_F(GeoclueLocationSourceTest, tellsTheServiceWhoAsksAndHowFinely) {
    startService();
    source.requestLocation();
    ASSERT_TRUE(isCalled("Start"));

    QVariantMap set;
    for (const auto& call : service->calls("Set"))
        set[call.arguments().at(1).toString()] = call.arguments().at(2).value<QDBusVariant>().variant();
    EXPECT_EQ(set.value(QStringLiteral("DesktopId")), QVariant(QStringLiteral("nightjar")));
    EXPECT_EQ(set.value(QStringLiteral("DistanceThreshold")), QVariant(50u));
    EXPECT_EQ(set.value(QStringLiteral("RequestedAccuracyLevel")), QVariant(8u));
}

TEST_F(GeoclueLocationSourceTest, requestsThatOverlapShareOneFix) {
    startService();
    auto stamped = amsterdamBut("Timestamp", QVariant::fromValue(Stamp{1'700'000'000, 500'000}));
    service->on("GetAll", {stamped});
    source.requestLocation();
    source.requestLocation();
    ASSERT_TRUE(isCalled("Start"));
    source.requestLocation();
    tellOfLocation();
    tellOfLocation();
    ASSERT_TRUE(isClosed());

    ASSERT_EQ(fixes.size(), 1u);
    EXPECT_EQ(fixes[0], (LocationFix{.latitude = 52.37,
                                     .longitude = 4.9,
                                     .horizontalAccuracy = 25,
                                     .timestamp = dateFromUnixSeconds(1'700'000'000.5)}));
    EXPECT_EQ(service->count("CreateClient"), 1u);
    EXPECT_EQ(scheduler.armedTimers(), 0u) << "the fix that came is not reported missing later";

    source.requestLocation();
    ASSERT_TRUE(isCalled("Start", 2));
    tellOfLocation();
    EXPECT_TRUE(isClosed(2));
    EXPECT_EQ(fixes.size(), 2u);
    EXPECT_TRUE(errors.empty());
}

TEST_F(GeoclueLocationSourceTest, aFixMayBeAskedForWhenAccessIsGranted) {
    startService();
    // The location comes before Start is answered: it must not be missed.
    service->on("Start", [this](const QDBusMessage& call) {
        tellOfLocation();
        return call.createReply();
    });
    source.setListener({.onAuthorizationChanged = [this] { source.requestLocation(); },
                        .onFixes = [this](const auto& heard) { fixes = heard; }},
                       {});
    source.requestWhenInUseAuthorization();
    ASSERT_TRUE(isClosed());

    EXPECT_EQ(fixes.size(), 1u);
    EXPECT_EQ(service->count("CreateClient"), 1u);
}

TEST_F(GeoclueLocationSourceTest, senselessLocationsAreNone) {
    startService();
    const QVariantMap senseless[] = {
        {},
        amsterdamBut("Latitude"),
        amsterdamBut("Latitude", 90.01),
        amsterdamBut("Latitude", std::numeric_limits<double>::quiet_NaN()),
        amsterdamBut("Latitude", QStringLiteral("52.37")),
        amsterdamBut("Longitude", -180.01),
        amsterdamBut("Longitude", 4),
        amsterdamBut("Accuracy", -1.0),
        amsterdamBut("Accuracy", std::numeric_limits<double>::infinity()),
    };
    source.requestLocation();
    ASSERT_TRUE(isCalled("Start"));
    std::size_t told = 0;
    for (const auto& properties : senseless) {
        service->on("GetAll", {properties});
        tellOfLocation();
        ASSERT_TRUE(isCalled("GetAll", ++told));
    }
    service->on("GetAll", {QStringLiteral("no map at all")});
    tellOfLocation();
    ASSERT_TRUE(isCalled("GetAll", ++told));
    service->on("GetAll", {amsterdamBut("Timestamp", 7.0)});
    tellOfLocation();
    ASSERT_TRUE(isClosed());

    ASSERT_EQ(fixes.size(), 1u);
    EXPECT_EQ(fixes[0].timestamp, scheduler.now()) << "the service told no time that can be read";
    EXPECT_TRUE(errors.empty());
}

TEST_F(GeoclueLocationSourceTest, onlyTheServiceItselfIsBelieved) {
    startService();
    source.requestLocation();
    ASSERT_TRUE(isCalled("Start"));
    ScriptedService stranger(bus.connect(), QStringLiteral("org.example.Stranger"), QStringLiteral("/org"));
    tellOfLocation(stranger);
    service->tell(clientPath, clientInterface, QStringLiteral("LocationUpdated"),
                  {QStringLiteral("no path")});
    tellOfLocation();
    ASSERT_TRUE(isClosed());

    EXPECT_EQ(service->count("GetAll"), 1u);
}

TEST_F(GeoclueLocationSourceTest, whatGoesWrongIsToldAsWhatItIs) {
    struct Case {
        const char* method;
        QString error;
        LocationAuthorization authorization;
        bool isTemporary;
        const char* text;
    };
    using enum LocationAuthorization;
    const auto failed = QStringLiteral("org.freedesktop.DBus.Error.Failed");
    const Case cases[] = {
        {"CreateClient", accessDenied, denied, true, ""},
        {"Start", accessDenied, denied, true, ""},
        {"Set", accessDenied, denied, true, ""},
        {"CreateClient", QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown"), denied, true, ""},
        {"Start", QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown"), notDetermined, true, ""},
        {"CreateClient", QStringLiteral("org.freedesktop.DBus.Error.NoReply"), notDetermined, true, ""},
        {"Start", failed, notDetermined, false, "The antenna is wet"},
        {"CreateClient", failed, notDetermined, false, "The antenna is wet"},
    };
    for (const auto& expected : cases) {
        startService();
        service->refuse(expected.method, expected.error, QStringLiteral("The antenna is wet"));
        GeoclueLocationSource fresh(connector, scheduler, QStringLiteral("nightjar"));
        std::vector<LocationError> told;
        fresh.setListener({.onError = [&](const auto& error) { told.push_back(error); }}, {});
        fresh.requestWhenInUseAuthorization();
        fresh.requestLocation();

        ASSERT_TRUE(runEventsUntil([&] { return !told.empty(); })) << expected.method;
        EXPECT_EQ(told[0].isTemporary, expected.isTemporary) << expected.method;
        EXPECT_EQ(told[0].description, expected.text);
        EXPECT_EQ(fresh.authorization(), expected.authorization) << expected.method;
        EXPECT_EQ(scheduler.armedTimers(), 0u);
    }
}

TEST_F(GeoclueLocationSourceTest, aMissingServiceCountsAsDenied) {
    source.requestWhenInUseAuthorization();
    ASSERT_TRUE(runEventsUntil([&] { return !authorizations.empty(); }));

    EXPECT_EQ(authorizations, std::vector{LocationAuthorization::denied});
    EXPECT_TRUE(errors.empty());
}

TEST_F(GeoclueLocationSourceTest, theBusMayStartTheService) {
    // It never takes the name: that the command runs is enough.
    QTemporaryDir folder;
    const auto mark = folder.filePath(QStringLiteral("started"));
    bus.makeActivatable(serviceName, QStringLiteral("/bin/sh -c \"touch %1\"").arg(mark));
    source.requestWhenInUseAuthorization();

    EXPECT_TRUE(runEventsUntil([&] { return QFile::exists(mark); }));
}

TEST_F(GeoclueLocationSourceTest, aSilentServiceIsGivenUp) {
    startService();
    service->staySilent("CreateClient");
    source.requestLocation();
    ASSERT_TRUE(isCalled("CreateClient"));
    scheduler.advance(GeoclueLocationSource::fixLimit);

    ASSERT_EQ(errors.size(), 1u);
    EXPECT_TRUE(errors[0].isTemporary);

    service->on("CreateClient", {QVariant::fromValue(QDBusObjectPath(clientPath))});
    source.requestLocation();
    ASSERT_TRUE(isCalled("Start"));
    tellOfLocation();
    EXPECT_TRUE(isClosed());
    EXPECT_EQ(fixes.size(), 1u) << "what was silent once is asked again";
}

TEST_F(GeoclueLocationSourceTest, aClientThatIsMadeTooLateIsClearedAway) {
    startService();
    QDBusMessage waiting;
    service->on("CreateClient", [&](const QDBusMessage& call) {
        waiting = call;
        return QDBusMessage();
    });
    source.requestLocation();
    ASSERT_TRUE(isCalled("CreateClient"));
    source.stopUpdatingLocation();
    service->answer(waiting.createReply(QVariant::fromValue(QDBusObjectPath(clientPath))));

    ASSERT_TRUE(isClosed());
    EXPECT_EQ(service->count("Start"), 0u);
    scheduler.advance(GeoclueLocationSource::fixLimit);
    EXPECT_TRUE(errors.empty()) << "nobody waits for it any more";
}

TEST_F(GeoclueLocationSourceTest, aServiceOrBusThatGoesEndsTheRequest) {
    startService();
    source.requestLocation();
    ASSERT_TRUE(isCalled("Start"));
    service.reset();
    ASSERT_TRUE(runEventsUntil([&] { return errors.size() == 1; }));

    startService();
    source.requestLocation();
    ASSERT_TRUE(isCalled("Start"));
    bus.end();
    ASSERT_TRUE(runEventsUntil([&] { return errors.size() == 2; }));

    EXPECT_TRUE(errors[0].isTemporary);
    EXPECT_TRUE(errors[1].isTemporary);
    EXPECT_EQ(source.authorization(), LocationAuthorization::authorizedAlways) << "nobody took it back";
}

} // namespace
} // namespace nightjar
