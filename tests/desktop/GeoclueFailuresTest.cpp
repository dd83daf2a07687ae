// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/desktop/GeoclueRig.h"

namespace nightjar {
namespace {

const auto accessDenied = QStringLiteral("org.freedesktop.DBus.Error.AccessDenied");

using GeoclueFailuresTest = GeoclueRig;

TEST_F(GeoclueFailuresTest, whatGoesWrongIsToldAsWhatItIs) {
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
        EXPECT_EQ(scheduler.armedTimers(), expected.authorization == denied ? 1u : 0u) << "asks again later";
    }
}

TEST_F(GeoclueFailuresTest, aMissingServiceCountsAsDenied) {
    source.requestWhenInUseAuthorization();
    ASSERT_TRUE(runEventsUntil([&] { return !authorizations.empty(); }));

    EXPECT_EQ(authorizations, std::vector{LocationAuthorization::denied});
    EXPECT_TRUE(errors.empty());

    startService();
    scheduler.advance(GeoclueLocationSource::askAgainAfter);
    ASSERT_TRUE(runEventsUntil([&] { return authorizations.size() == 2; })) << "installed meanwhile";
    EXPECT_EQ(authorizations.back(), LocationAuthorization::authorizedAlways);
}

TEST_F(GeoclueFailuresTest, aSilentServiceIsGivenUp) {
    startService();
    service->staySilent("CreateClient");
    source.requestLocation();
    ASSERT_TRUE(isCalled("CreateClient"));
    scheduler.advance(GeoclueLocationSource::fixLimit);

    ASSERT_EQ(errors.size(), 1u);
    EXPECT_TRUE(errors[0].isTemporary);

    service->on("CreateClient", {QVariant::fromValue(QDBusObjectPath(geoclueClient))});
    source.requestLocation();
    ASSERT_TRUE(isCalled("Start"));
    tellOfLocation();
    EXPECT_TRUE(isClosed());
    EXPECT_EQ(fixes.size(), 1u) << "what was silent once is asked again";
}

TEST_F(GeoclueFailuresTest, aClientThatIsMadeTooLateIsClearedAway) {
    startService();
    QDBusMessage waiting;
    service->on("CreateClient", [&](const QDBusMessage& call) {
        waiting = call;
        return QDBusMessage();
    });
    source.requestLocation();
    ASSERT_TRUE(isCalled("CreateClient"));
    source.stopUpdatingLocation();
    service->answer(waiting.createReply(QVariant::fromValue(QDBusObjectPath(geoclueClient))));

    ASSERT_TRUE(isClosed());
    EXPECT_EQ(service->count("Start"), 0u);
    scheduler.advance(GeoclueLocationSource::fixLimit);
    EXPECT_TRUE(errors.empty()) << "nobody waits for it any more";
}

TEST_F(GeoclueFailuresTest, aServiceOrBusThatGoesEndsTheRequest) {
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
