// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>

namespace nightjar {

/// Monotonic time for a thread that waits in poll(2). Any thread.
class PollClock {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    virtual ~PollClock() = default;
    [[nodiscard]] virtual TimePoint now() const = 0;
    /// Milliseconds to hand to poll(2) so that it returns at `deadline`; -1 = until woken.
    [[nodiscard]] virtual int pollTimeout(TimePoint deadline) const = 0;
    /// Calls `wake` whenever time jumps, so that the waiting thread looks at its deadlines again. Until the returned
    /// registration's owner unregisters with an empty function.
    virtual void onAdvance(std::function<void()> wake) = 0;
};

} // namespace nightjar
