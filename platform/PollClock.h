// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace nightjar {

/// Monotonic time for a thread that waits in poll(2). Any thread.
class PollClock {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    /// Keeps a wake function registered; once it is destroyed no new call of that function begins.
    class Registration {
    public:
        Registration() = default;
        explicit Registration(std::shared_ptr<void> kept) : m_kept(std::move(kept)) {}

    private:
        std::shared_ptr<void> m_kept;
    };

    virtual ~PollClock() = default;
    [[nodiscard]] virtual TimePoint now() const = 0;
    /// Milliseconds to hand to poll(2) so that it returns at `deadline`; -1 = wait until woken, always so
    /// when absent. A waiting thread asks anew before each wait.
    [[nodiscard]] virtual int pollTimeout(std::optional<TimePoint> deadline) const = 0;
    /// Has `wake` called, on whatever thread moves the time, whenever time jumps, so that a thread that waits
    /// already looks at its deadlines again. `wake` must be safe to call from any thread and must not call
    /// the clock.
    [[nodiscard]] virtual Registration onJump(std::function<void()> wake) = 0;
};

} // namespace nightjar
