// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/bluetooth/ComputerLocation.h"

#include <chrono>
#include <cmath>

namespace nightjar {

namespace {

constexpr std::chrono::seconds requestPeriod{300};
constexpr Seconds validity{300};

bool isUsable(const LocationFix& fix) {
    return fix.horizontalAccuracy >= 0 && std::abs(fix.latitude) <= 90 && std::abs(fix.longitude) <= 180;
}

} // namespace

void ComputerLocation::requestLocationIfNeeded() {
    if (m_source.authorization() != LocationAuthorization::authorizedAlways)
        return;
    const auto now = m_scheduler.steadyNow();
    if (m_lastLocationRequest && now - *m_lastLocationRequest < requestPeriod)
        return;
    m_lastLocationRequest = now;
    m_source.requestLocation();
}

void ComputerLocation::requestAccessOrLocation() {
    if (m_source.authorization() == LocationAuthorization::notDetermined)
        m_source.requestWhenInUseAuthorization();
    requestLocationIfNeeded();
}

void ComputerLocation::receive(const std::vector<LocationFix>& fixes) {
    if (!fixes.empty() && isUsable(fixes.back()))
        m_currentLocation = fixes.back();
}

std::optional<std::string> ComputerLocation::sentence(const LocationError& error) {
    if (error.isTemporary)
        return std::nullopt;
    return "The Mac's location is unavailable: " + error.description;
}

std::optional<ComputerLocation::Place> ComputerLocation::recentPlace(Date date) const {
    if (!m_currentLocation || !(std::chrono::abs(date - m_currentLocation->timestamp) < validity))
        return std::nullopt;
    return Place{m_currentLocation->latitude, m_currentLocation->longitude};
}

} // namespace nightjar
