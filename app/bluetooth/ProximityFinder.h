// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/Published.h"
#include "core/base/Uuid.h"
#include "core/bluetooth/BluetoothProximity.h"
#include "platform/Scheduler.h"

#include <optional>

namespace nightjar {

/// Which device the user is walking towards, and when something is due on the way. Main thread.
class ProximityFinder {
public:
    struct Announcers {
        Announcer trackedID;
        Announcer isFinding;
        Announcer soundEnabled;
    };

    explicit ProximityFinder(const Announcers& announcers)
        : m_trackedID(announcers.trackedID),
          m_isFinding(announcers.isFinding),
          m_soundEnabled(announcers.soundEnabled) {}

    [[nodiscard]] const std::optional<Uuid>& trackedID() const { return m_trackedID.get(); }
    [[nodiscard]] bool isFinding() const { return m_isFinding.get(); }
    [[nodiscard]] bool isFinding(const Uuid& id) const { return isFinding() && trackedID() == id; }
    [[nodiscard]] bool isSoundEnabled() const { return m_soundEnabled.get(); }
    void setSoundEnabled(bool enabled) { m_soundEnabled.set(enabled); }

    /// On a device, also from another one. False when somebody who was told of it has decided otherwise.
    [[nodiscard]] bool start(const Uuid& id);
    /// The same.
    [[nodiscard]] bool stop();

    /// Whether the cue is to sound now, which is then noted. `heardAt` is when the device was last processed.
    [[nodiscard]] bool soundIsDue(BluetoothProximityBand band, SteadyTime heardAt, SteadyTime now);
    /// The radio begins afresh.
    void noteScan(SteadyTime now) { m_scannedAt = now; }
    /// Whether the radio should begin afresh: some report an address once until they do. `heardAt` is absent
    /// for a device that was not heard.
    [[nodiscard]] bool scanIsDue(std::optional<SteadyTime> heardAt, SteadyTime now) const;

private:
    Published<std::optional<Uuid>> m_trackedID;
    Published<bool> m_isFinding;
    Published<bool> m_soundEnabled;
    int m_generation = 0; ///< counts starts and stops
    std::optional<SteadyTime> m_lastFinderSound;
    SteadyTime m_scannedAt{};
};

} // namespace nightjar
