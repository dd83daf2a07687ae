// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/LocationSource.h"
#include "platform/Scheduler.h"

#include <optional>
#include <string>
#include <vector>

namespace nightjar {

/// Where the computer is, asked for as seldom as will do. Main thread.
class ComputerLocation {
public:
    struct Place {
        double latitude;  ///< degrees
        double longitude; ///< degrees
    };

    ComputerLocation(LocationSource& source, const Scheduler& scheduler)
        : m_source(source), m_scheduler(scheduler) {}

    /// Asks for a fix where the user allows it, every 300 s at most.
    void requestLocationIfNeeded();
    /// The same, but first asks a user who has not decided yet.
    void requestAccessOrLocation();
    /// No fix is wanted any more.
    void stopUpdating() { m_source.stopUpdatingLocation(); }

    void receive(const std::vector<LocationFix>& fixes);
    /// A sentence for the user, where the error is worth one.
    [[nodiscard]] static std::optional<std::string> sentence(const LocationError& error);
    /// The latest fix, unless it is of 300 s before or after `date` or further away.
    [[nodiscard]] std::optional<Place> recentPlace(Date date) const;

private:
    LocationSource& m_source;
    const Scheduler& m_scheduler;
    std::optional<LocationFix> m_currentLocation;
    std::optional<SteadyTime> m_lastLocationRequest;
};

} // namespace nightjar
