// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/LocationSource.h"

#include <utility>

namespace nightjar {

/// The computer's whereabouts as the test sets them. What happens is told at once. One thread.
class FakeLocationSource final : public LocationSource {
public:
    void setListener(Listener listener, const Wishes& wishes) override {
        m_listener = std::move(listener);
        m_wishes = wishes;
    }
    [[nodiscard]] LocationAuthorization authorization() const override { return m_authorization; }
    void requestWhenInUseAuthorization() override { ++m_authorizationRequests; }
    void requestLocation() override {
        ++m_locationRequests;
        m_isWaiting = true;
    }
    void stopUpdatingLocation() override {
        ++m_stops;
        m_isWaiting = false;
    }

    void setAuthorization(LocationAuthorization authorization) {
        m_authorization = authorization;
        if (m_listener.onAuthorizationChanged)
            m_listener.onAuthorizationChanged();
    }
    void locate(const std::vector<LocationFix>& fixes) {
        m_isWaiting = false;
        if (m_listener.onFixes)
            m_listener.onFixes(fixes);
    }
    void fail(const LocationError& error) {
        m_isWaiting = false;
        if (m_listener.onError)
            m_listener.onError(error);
    }

    [[nodiscard]] const Wishes& wishes() const { return m_wishes; }
    [[nodiscard]] int authorizationRequests() const { return m_authorizationRequests; }
    [[nodiscard]] int locationRequests() const { return m_locationRequests; }
    [[nodiscard]] int stops() const { return m_stops; }
    /// Whether a fix was asked for that has not come yet.
    [[nodiscard]] bool isWaiting() const { return m_isWaiting; }

private:
    LocationAuthorization m_authorization = LocationAuthorization::notDetermined;
    Listener m_listener;
    Wishes m_wishes;
    int m_authorizationRequests = 0;
    int m_locationRequests = 0;
    int m_stops = 0;
    bool m_isWaiting = false;
};

} // namespace nightjar
