// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/GeoclueLocationSource.h"

#include <utility>

namespace nightjar {

GeoclueLocationSource::GeoclueLocationSource(BusConnector& systemBus, Scheduler& scheduler, QString desktopId)
    : m_bus(systemBus), m_scheduler(scheduler), m_desktopId(std::move(desktopId)) {
    connect(&m_bus, &BusConnector::opened, this, &GeoclueLocationSource::openClient);
    connect(&m_bus, &BusConnector::lost, this, &GeoclueLocationSource::busLost);
}

void GeoclueLocationSource::setListener(Listener listener, const Wishes& wishes) {
    m_listener = std::move(listener);
    m_wishes = wishes;
}

void GeoclueLocationSource::requestWhenInUseAuthorization() {
    if (m_authorization != LocationAuthorization::notDetermined || m_wantsAuthorization)
        return;
    m_wantsAuthorization = true;
    openClient();
}

void GeoclueLocationSource::requestLocation() {
    if (m_wantsFix)
        return;
    m_wantsFix = true;
    m_fixLimit = m_scheduler.after(fixLimit, [this] { refuseFix({.isTemporary = true}); });
    openClient();
}

void GeoclueLocationSource::stopUpdatingLocation() {
    m_wantsFix = false;
    m_fixLimit.cancel();
    if (!m_wantsAuthorization)
        closeClient();
}

void GeoclueLocationSource::openClient() {
    if (m_client || (!m_wantsFix && !m_wantsAuthorization))
        return;
    if (!m_bus.isConnected())
        return m_bus.open();
    if (m_wantsAuthorization)
        m_authorizationLimit = m_scheduler.after(authorizationLimit, [this] { authorizationExpired(); });
    const GeoclueClient::Settings settings{.desktopId = m_desktopId,
                                           .distanceThreshold =
                                               static_cast<unsigned>(m_wishes.distanceFilter),
                                           .limit = authorizationLimit};
    m_client = new GeoclueClient(m_bus.bus(), m_scheduler, settings, *this);
    connect(m_client, &GeoclueClient::started, this, &GeoclueLocationSource::started);
    connect(m_client, &GeoclueClient::locationAvailable, this, &GeoclueLocationSource::readLocation);
    connect(m_client, &GeoclueClient::located, this, &GeoclueLocationSource::located);
    connect(m_client, &GeoclueClient::failed, this, &GeoclueLocationSource::failed);
}

void GeoclueLocationSource::closeClient() {
    m_hasStarted = false;
    m_authorizationLimit.cancel();
    if (auto* client = std::exchange(m_client, nullptr))
        client->close();
}

void GeoclueLocationSource::started() {
    m_hasStarted = true;
    m_wantsAuthorization = false;
    m_authorizationLimit.cancel();
    // Whoever is told of it may ask for a fix, which this client can deliver.
    setAuthorization(LocationAuthorization::authorizedAlways);
    if (m_wantsFix)
        readLocation();
    else
        closeClient();
}

void GeoclueLocationSource::readLocation() {
    if (m_client && m_hasStarted && m_wantsFix)
        m_client->readLocation();
}

void GeoclueLocationSource::located(const LocationFix& fix) {
    stopUpdatingLocation();
    if (m_listener.onFixes)
        m_listener.onFixes({fix});
}

void GeoclueLocationSource::failed(const GeoclueClient::Failure& failure) {
    using Kind = GeoclueClient::Failure::Kind;
    m_wantsAuthorization = false;
    closeClient();
    if (failure.kind == Kind::denied) {
        setAuthorization(LocationAuthorization::denied);
        askAgainLater();
    }
    refuseFix({.isTemporary = failure.kind != Kind::other, .description = failure.text.toStdString()});
}

void GeoclueLocationSource::busLost() {
    // A question for access is put again once the bus is back.
    closeClient();
    refuseFix({.isTemporary = true});
}

/// The user may change the mind, or install the service, in the months that we run.
void GeoclueLocationSource::askAgainLater() {
    m_askAgain = m_scheduler.after(askAgainAfter, [this] {
        m_askAgain.cancel();
        if (m_authorization == LocationAuthorization::authorizedAlways)
            return;
        m_authorization = LocationAuthorization::notDetermined;
        requestWhenInUseAuthorization();
    });
}

void GeoclueLocationSource::authorizationExpired() {
    m_wantsAuthorization = false;
    askAgainLater();
    if (!m_wantsFix)
        closeClient();
}

void GeoclueLocationSource::setAuthorization(LocationAuthorization authorization) {
    if (std::exchange(m_authorization, authorization) != authorization && m_listener.onAuthorizationChanged)
        m_listener.onAuthorizationChanged();
}

void GeoclueLocationSource::refuseFix(const LocationError& error) {
    if (!m_wantsFix)
        return;
    stopUpdatingLocation();
    if (m_listener.onError)
        m_listener.onError(error);
}

} // namespace nightjar
