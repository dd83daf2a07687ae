// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/LocationSource.h"
#include "platform/linux/BusConnector.h"
#include "platform/linux/GeoclueClient.h"

#include <QObject>

namespace nightjar {

/// Where the computer is, as the desktop's location service tells it; the system bus starts the service when
/// it is needed. Main thread.
///
/// Access is settled by the service's answer: until then the desktop may be asking the user. A service that
/// is missing counts as denied access. Each fix has a client of the service for itself; requests that overlap
/// are one. A request that fails because access is denied, or the service silent or gone, fails for the
/// moment only.
class GeoclueLocationSource final : public QObject, public LocationSource {
    Q_OBJECT
public:
    static constexpr std::chrono::milliseconds fixLimit = std::chrono::seconds(60);
    /// The user may take a while to answer.
    static constexpr std::chrono::milliseconds authorizationLimit = std::chrono::minutes(5);
    /// Who was refused, or got no answer, asks again after this long.
    static constexpr std::chrono::milliseconds askAgainAfter = std::chrono::hours(1);

    /// `desktopId` is the name of the program's .desktop file, without the ending.
    GeoclueLocationSource(BusConnector& systemBus, Scheduler& scheduler, QString desktopId);

    void setListener(Listener listener, const Wishes& wishes) override;
    [[nodiscard]] LocationAuthorization authorization() const override { return m_authorization; }
    void requestWhenInUseAuthorization() override;
    void requestLocation() override;
    void stopUpdatingLocation() override;

private:
    void openClient();
    void closeClient();
    void started();
    void readLocation();
    void located(const LocationFix& fix);
    void failed(const GeoclueClient::Failure& failure);
    void busLost();
    void authorizationExpired();
    void askAgainLater();
    void setAuthorization(LocationAuthorization authorization);
    /// Nothing when no fix was asked for.
    void refuseFix(const LocationError& error);

    BusConnector& m_bus;
    Scheduler& m_scheduler;
    QString m_desktopId;
    Listener m_listener;
    Wishes m_wishes;
    LocationAuthorization m_authorization = LocationAuthorization::notDetermined;
    bool m_wantsAuthorization = false;
    bool m_wantsFix = false;
    bool m_hasStarted = false;         ///< the client has been granted access
    GeoclueClient* m_client = nullptr; ///< a child; null when none is open
    Timer m_fixLimit;
    Timer m_authorizationLimit;
    Timer m_askAgain;
};

} // namespace nightjar
