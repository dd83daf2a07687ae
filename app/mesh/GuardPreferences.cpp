// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/mesh/GuardPreferences.h"

#include "core/json/Decoder.h"
#include "core/json/Encoder.h"
#include "core/mesh/MeshJson.h"

#include <cmath>
#include <limits>

namespace nightjar {

namespace {

constexpr std::string_view guardedNodeKey = "guardedNodeID";
constexpr std::string_view formerGuardedNodeKey = "bikeNode";
constexpr std::string_view radiusKey = "parkingRadius";
constexpr std::string_view profileKey = "guardProfile";
constexpr std::string_view parkedPositionKey = "parkedPosition";

/// A number that names no node, such as -1 or 0.5, is none.
std::optional<std::uint32_t> nodeNumber(const Preferences& preferences, std::string_view key) {
    const auto number = preferences.number(key);
    if (!number || !(*number >= 0 && *number <= std::numeric_limits<std::uint32_t>::max()))
        return std::nullopt;
    if (std::trunc(*number) != *number)
        return std::nullopt;
    return static_cast<std::uint32_t>(*number);
}

} // namespace

bool GuardPreferences::migrate() {
    if (!holdsNothing(guardedNodeKey))
        return false;
    const auto former = nodeNumber(m_preferences, formerGuardedNodeKey);
    if (former)
        setGuardedNodeID(former);
    return former.has_value();
}

std::optional<std::uint32_t> GuardPreferences::guardedNodeID() const {
    return nodeNumber(m_preferences, guardedNodeKey);
}

void GuardPreferences::setGuardedNodeID(std::optional<std::uint32_t> number) {
    if (number) {
        m_preferences.setInteger(guardedNodeKey, *number);
    } else {
        m_preferences.remove(guardedNodeKey);
    }
}

std::optional<double> GuardPreferences::radius() const {
    return m_preferences.number(radiusKey);
}

void GuardPreferences::setRadius(double metres) {
    if (std::isfinite(metres))
        m_preferences.setNumber(radiusKey, metres);
}

std::optional<GuardProfile> GuardPreferences::profile() const {
    const auto text = m_preferences.string(profileKey);
    return text ? guardProfileFromRawValue(*text) : std::nullopt;
}

void GuardPreferences::setProfile(GuardProfile profile) {
    m_preferences.setString(profileKey, rawValue(profile));
}

std::optional<MeshPosition> GuardPreferences::parkedPosition() const {
    const auto data = m_preferences.data(parkedPositionKey);
    if (!data)
        return std::nullopt;
    const std::string text(data->begin(), data->end());
    return json::Decoder(json::DateForm::secondsSince2001).decode<MeshPosition>(text);
}

void GuardPreferences::setParkedPosition(const MeshPosition& position) {
    const auto text = json::Encoder(json::DateForm::secondsSince2001).encode(position);
    if (text)
        m_preferences.setData(parkedPositionKey, Preferences::Data(text->begin(), text->end()));
}

void GuardPreferences::removeParkedPosition() {
    m_preferences.remove(parkedPositionKey);
}

bool GuardPreferences::holdsNothing(std::string_view key) const {
    return !m_preferences.number(key) && !m_preferences.integer(key) && !m_preferences.string(key) &&
           !m_preferences.boolean(key) && !m_preferences.dictionary(key) && !m_preferences.data(key);
}

} // namespace nightjar
