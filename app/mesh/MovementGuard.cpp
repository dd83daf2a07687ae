// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/mesh/MovementGuard.h"

#include "app/alerts/AlertIdentifiers.h"

#include <cmath>

namespace nightjar {

namespace {

constexpr double defaultRadius = 75;
constexpr const char* armedStatus = "Armed · waiting for movement";
constexpr const char* unarmedStatus = "No position marked";

/// Whether a position can be measured from. A radio without a fix may report anything; a reading that is
/// nowhere says neither that the node moved nor that it stayed.
bool isOnEarth(const MeshPosition& position) {
    return std::abs(position.latitude) <= 90 && std::abs(position.longitude) <= 180;
}

/// Whole metres, cut off. No two points of the Earth are further apart than fits.
std::string metresText(double metres) {
    return std::to_string(static_cast<long long>(metres));
}

struct StatusText {
    std::string operator()(const BicycleMovement::Inside& inside) const {
        return "Armed · " + metresText(inside.distance) + " m from parked position";
    }
    std::string operator()(const BicycleMovement::Confirming& confirming) const {
        return "Confirming movement · " + std::to_string(confirming.count) + " of " +
               std::to_string(confirming.required) + " readings · " + metresText(confirming.distance) + " m";
    }
    std::string operator()(const BicycleMovement::Moved& moved) const {
        return "Movement detected · " + metresText(moved.distance) + " m from parked position";
    }
    std::string operator()(const BicycleMovement::Ignored&) const { return {}; }
};

} // namespace

MovementGuard::MovementGuard(Preferences& preferences, const Scheduler& scheduler,
                             const Announcers& announcers)
    : m_preferences(preferences),
      m_scheduler(scheduler),
      m_radius(announcers.radius, defaultRadius),
      m_parkedPosition(announcers.parkedPosition),
      m_status(announcers.status, unarmedStatus),
      m_profile(announcers.profile, GuardProfile::general) {
    restore();
}

void MovementGuard::restore() {
    const auto radius = m_preferences.radius().value_or(0);
    setRadius(radius == 0 || std::isnan(radius) ? defaultRadius : radius);
    if (const auto profile = m_preferences.profile())
        setProfile(*profile);
    if (m_preferences.migrate())
        setProfile(GuardProfile::bicycle);
    if (const auto position = m_preferences.parkedPosition(); position && isOnEarth(*position)) {
        arm(position, armedStatus);
    }
}

void MovementGuard::setRadius(double metres) {
    m_radius.set(metres);
    m_preferences.setRadius(metres);
}

void MovementGuard::setProfile(GuardProfile profile) {
    m_profile.set(profile);
    m_preferences.setProfile(profile);
}

bool MovementGuard::mark(const MeshPosition& position) {
    if (!isOnEarth(position))
        return false;
    arm(position, armedStatus);
    m_preferences.setParkedPosition(position);
    return true;
}

void MovementGuard::clearParking() {
    arm({}, unarmedStatus);
    m_preferences.removeParkedPosition();
}

void MovementGuard::arm(const std::optional<MeshPosition>& position, const char* status) {
    m_parkedPosition.set(position);
    m_hasSentAlert = false;
    m_detector.reset();
    m_status.set(status);
}

std::optional<Notification> MovementGuard::check(const MeshPosition& position, std::uint32_t number) {
    if (guardedNodeID() != number || !parkedPosition() || !isOnEarth(position))
        return std::nullopt;

    // Nothing is further away than a radius that is not a number: the usual one keeps the guard from going
    // blind.
    const double usedRadius = std::isnan(radius()) ? defaultRadius : radius();
    const auto result = m_detector.evaluate(position, *parkedPosition(), usedRadius);
    if (std::holds_alternative<BicycleMovement::Ignored>(result))
        return std::nullopt;

    const auto* moved = std::get_if<BicycleMovement::Moved>(&result);
    const bool isDue = moved && !m_hasSentAlert;
    m_hasSentAlert |= isDue;
    m_status.set(std::visit(StatusText{}, result));
    return isDue ? std::optional(alert(metresText(moved->distance))) : std::nullopt;
}

Notification MovementGuard::alert(const std::string& distance) const {
    return {.identifier = AlertIdentifiers::guardedDeviceMoved(m_scheduler.now()),
            .title = profile() == GuardProfile::bicycle ? "Bicycle moved" : "Guarded device moved",
            .body = "Two positions place the device outside the marked area. Latest distance: about " +
                    distance + " m.",
            .sound = NotificationSound::critical};
}

} // namespace nightjar
