// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/mesh/GuardProfile.h"
#include "core/mesh/MeshPosition.h"
#include "platform/Preferences.h"

#include <cstdint>
#include <optional>

namespace nightjar {

/// What the guard keeps across restarts. Everything is read afresh; what cannot be read is absent. Main
/// thread.
class GuardPreferences {
public:
    explicit GuardPreferences(Preferences& preferences) : m_preferences(preferences) {}

    /// Takes over the guarded node of an older layout, which knew bicycles only; true when there was one to
    /// take over.
    [[nodiscard]] bool migrate();

    [[nodiscard]] std::optional<std::uint32_t> guardedNodeID() const;
    void setGuardedNodeID(std::optional<std::uint32_t> number);

    /// Metres.
    [[nodiscard]] std::optional<double> radius() const;
    /// A radius that is no finite number is not kept.
    void setRadius(double metres);

    [[nodiscard]] std::optional<GuardProfile> profile() const;
    void setProfile(GuardProfile profile);

    [[nodiscard]] std::optional<MeshPosition> parkedPosition() const;
    /// A position that cannot be written leaves the kept one.
    void setParkedPosition(const MeshPosition& position);
    void removeParkedPosition();

private:
    [[nodiscard]] bool holdsNothing(std::string_view key) const;

    Preferences& m_preferences;
};

} // namespace nightjar
