// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/Published.h"
#include "app/mesh/GuardPreferences.h"
#include "core/mesh/BicycleMovementDetector.h"
#include "platform/NotificationCenter.h"
#include "platform/Scheduler.h"

#include <cstdint>
#include <optional>
#include <string>

namespace nightjar {

/// Watches one node for movement away from a marked position, and tells of it once per marking. Main thread.
class MovementGuard {
public:
    struct Announcers {
        Announcer radius;
        Announcer parkedPosition;
        Announcer status;
        Announcer profile;
    };

    /// Starts with what was kept. Whether the movement was told of is not kept: after a restart it is told
    /// again.
    MovementGuard(Preferences& preferences, const Scheduler& scheduler, const Announcers& announcers);

    [[nodiscard]] double radius() const { return m_radius.get(); }
    [[nodiscard]] const std::optional<MeshPosition>& parkedPosition() const { return m_parkedPosition.get(); }
    [[nodiscard]] const std::string& status() const { return m_status.get(); }
    [[nodiscard]] GuardProfile profile() const { return m_profile.get(); }
    void setRadius(double metres);
    void setProfile(GuardProfile profile);

    [[nodiscard]] std::optional<std::uint32_t> guardedNodeID() const { return m_preferences.guardedNodeID(); }
    /// The marked position and what was counted stay as they are.
    void setGuardedNodeID(std::optional<std::uint32_t> number) { m_preferences.setGuardedNodeID(number); }

    /// Arms the guard at a position; false for one that is nowhere on Earth, with which it could only be
    /// blind.
    [[nodiscard]] bool mark(const MeshPosition& position);
    void clearParking();

    /// Judges a new position of a node; gives the alert that it makes due.
    [[nodiscard]] std::optional<Notification> check(const MeshPosition& position, std::uint32_t number);

private:
    void restore();
    void arm(const std::optional<MeshPosition>& position, const char* status);
    [[nodiscard]] Notification alert(const std::string& distance) const;

    GuardPreferences m_preferences;
    const Scheduler& m_scheduler;
    Published<double> m_radius;
    Published<std::optional<MeshPosition>> m_parkedPosition;
    Published<std::string> m_status;
    Published<GuardProfile> m_profile;
    BicycleMovementDetector m_detector{2};
    bool m_hasSentAlert = false;
};

} // namespace nightjar
