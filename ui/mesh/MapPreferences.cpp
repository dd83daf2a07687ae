// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/MapPreferences.h"

#include <cmath>

namespace nightjar {

namespace {

constexpr char hasRegion[] = "map.hasSavedRegion";
constexpr char latitude[] = "map.centerLatitude";
constexpr char longitude[] = "map.centerLongitude";
constexpr char latitudeDelta[] = "map.latitudeDelta";
constexpr char longitudeDelta[] = "map.longitudeDelta";

bool isSpan(double degrees) {
    return std::isfinite(degrees) && degrees > 0 && degrees <= 360;
}

} // namespace

std::optional<MapRegion> MapPreferences::region() const {
    if (!m_preferences.boolean(hasRegion).value_or(false))
        return std::nullopt;
    const MapRegion kept{
        .center = {m_preferences.number(latitude).value_or(0), m_preferences.number(longitude).value_or(0)},
        .latitudeDelta = m_preferences.number(latitudeDelta).value_or(0.1),
        .longitudeDelta = m_preferences.number(longitudeDelta).value_or(0.1)};
    if (!isOnEarth(kept.center) || !isSpan(kept.latitudeDelta) || !isSpan(kept.longitudeDelta))
        return std::nullopt;
    return kept;
}

void MapPreferences::setRegion(const MapRegion& region) {
    m_preferences.setNumber(latitude, region.center.latitude);
    m_preferences.setNumber(longitude, region.center.longitude);
    m_preferences.setNumber(latitudeDelta, region.latitudeDelta);
    m_preferences.setNumber(longitudeDelta, region.longitudeDelta);
    m_preferences.setBoolean(hasRegion, true);
}

} // namespace nightjar
