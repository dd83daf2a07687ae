// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Preferences.h"
#include "ui/map/MapGeometry.h"

#include <optional>

namespace nightjar {

/// The part of the map that was visible last, kept across restarts. Main thread.
class MapPreferences {
public:
    explicit MapPreferences(Preferences& preferences) : m_preferences(preferences) {}

    /// Absent when none was kept, or what was kept is no part of the Earth.
    [[nodiscard]] std::optional<MapRegion> region() const;
    void setRegion(const MapRegion& region);

private:
    Preferences& m_preferences;
};

} // namespace nightjar
