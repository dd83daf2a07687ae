// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/PollClock.h"
#include "radio/ChildProcess.h"

#include <chrono>
#include <optional>
#include <poll.h>
#include <vector>

namespace nightjar {

/// Bridges on their way out. Each has had its input closed and was asked to end; what it still says is read
/// away, so that its last words do not kill it; after the grace it is ended by force; in any case it is
/// reaped.
class LeavingProcesses {
public:
    using TimePoint = PollClock::TimePoint;

    explicit LeavingProcesses(std::chrono::milliseconds grace) : m_grace(grace) {}

    void add(ChildProcess child, TimePoint now);
    /// Whether all have gone, apart from those that not even force could end within another grace: a bridge
    /// that still lives may hold the radio that the next one wants to open.
    [[nodiscard]] bool areGone() const;
    [[nodiscard]] std::optional<TimePoint> nextDeadline() const;
    void addPollEntries(std::vector<pollfd>& entries) const;
    /// Reads away, forces and reaps what is due, without waiting.
    void attend(TimePoint now);
    /// Waits for all to end, by force after `limit`, in real time whatever the clock in use says, and gives
    /// up on what cannot even be killed after as much again.
    void endAll(std::chrono::milliseconds limit);

private:
    enum class Stage { asked, forced, stuck };
    struct Leaving {
        ChildProcess child;
        Stage stage;
        TimePoint deadline; ///< of the stage; nothing is waited for once the process is stuck
    };
    void waitForAll(std::chrono::milliseconds limit);

    std::chrono::milliseconds m_grace;
    std::vector<Leaving> m_leaving;
};

} // namespace nightjar
