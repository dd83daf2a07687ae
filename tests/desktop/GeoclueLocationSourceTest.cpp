// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/desktop/GeoclueRig.h"

#include <QDBusVariant>
#include <QFile>
#include <QTemporaryDir>

#include <limits>

namespace nightjar {
namespace {

using GeoclueLocationSourceTest = GeoclueRig;

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
    auto stamped = amsterdamBut("Timestamp", QVariant::fromValue(GeoclueStamp{1'700'000'000, 500'000}));
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

TEST_F(GeoclueLocationSourceTest, accessIsSettledAlsoWhereTheFixComesFirst) {
    startService();
    QDBusMessage waiting;
    service->on("Start", [&](const QDBusMessage& call) {
        tellOfLocation();
        waiting = call;
        return QDBusMessage();
    });
    source.requestLocation();
    ASSERT_TRUE(isCalled("Start"));
    ASSERT_TRUE(service->isHeardBy(connector.bus()));
    service->answer(waiting.createReply());
    ASSERT_TRUE(isClosed());

    EXPECT_EQ(fixes.size(), 1u);
    EXPECT_EQ(source.authorization(), LocationAuthorization::authorizedAlways);
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
    service->tell(geoclueClient, geoclueClientInterface, QStringLiteral("LocationUpdated"),
                  {QStringLiteral("no path")});
    tellOfLocation();
    ASSERT_TRUE(isClosed());

    EXPECT_EQ(service->count("GetAll"), 1u);
}

TEST_F(GeoclueLocationSourceTest, theBusMayStartTheService) {
    // It never takes the name: that the command runs is enough.
    QTemporaryDir folder;
    const auto mark = folder.filePath(QStringLiteral("started"));
    bus.makeActivatable(geoclueService, QStringLiteral("/bin/sh -c \"touch %1\"").arg(mark));
    source.requestWhenInUseAuthorization();

    EXPECT_TRUE(runEventsUntil([&] { return QFile::exists(mark); }));
}

} // namespace
} // namespace nightjar
