// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/simulated/Terrain.h"

#include <cmath>
#include <numbers>

namespace nightjar::bridge {
namespace {

constexpr double metersPerDegree = 6'371'000.0 * std::numbers::pi / 180;
constexpr double unitsPerDegree = 1e7;

double shrinkAt(double latitude) {
    return std::max(std::cos(latitude * std::numbers::pi / 180), 1e-6);
}

} // namespace

Place displaced(Place from, double metersNorth, double metersEast) {
    return {from.latitude + metersNorth / metersPerDegree,
            from.longitude + metersEast / metersPerDegree / shrinkAt(from.latitude)};
}

double metersBetween(Place from, Place to) {
    const double north = (to.latitude - from.latitude) * metersPerDegree;
    const double east = (to.longitude - from.longitude) * metersPerDegree * shrinkAt(from.latitude);
    return std::hypot(north, east);
}

Place rounded(Place place) {
    return {std::round(place.latitude * unitsPerDegree) / unitsPerDegree,
            std::round(place.longitude * unitsPerDegree) / unitsPerDegree};
}

Way::Way(Place start, std::span<const Place> then) : m_places{start} {
    for (const Place& place : then) {
        m_meters += metersBetween(m_places.back(), place);
        m_places.push_back(place);
    }
}

Place Way::at(double meters) const {
    for (std::size_t i = 1; i < m_places.size(); ++i) {
        const Place& from = m_places[i - 1];
        const Place& to = m_places[i];
        const double leg = metersBetween(from, to);
        if (meters < leg) {
            const double share = std::max(meters, 0.0) / leg;
            return {std::lerp(from.latitude, to.latitude, share),
                    std::lerp(from.longitude, to.longitude, share)};
        }
        meters -= leg;
    }
    return m_places.back();
}

} // namespace nightjar::bridge
