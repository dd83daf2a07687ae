// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/PollClock.h"

#include <condition_variable>
#include <mutex>
#include <vector>

namespace nightjar {

/// Time that stands still until `advance` is called. Any thread.
class FakePollClock final : public PollClock {
public:
    [[nodiscard]] TimePoint now() const override;
    [[nodiscard]] int pollTimeout(std::optional<TimePoint> deadline) const override;
    [[nodiscard]] Registration onJump(std::function<void()> wake) override;

    void advance(std::chrono::nanoseconds step);
    /// Waits, in real time, until the waiting thread's next deadline lies exactly `fromNow` ahead: what it
    /// waits for is then registered, and advancing is safe. False when that does not come about within
    /// `limit`.
    [[nodiscard]] bool waitUntilArmed(std::chrono::nanoseconds fromNow,
                                      std::chrono::milliseconds limit = std::chrono::seconds(10)) const;
    /// The same for a thread that waits for no deadline at all.
    [[nodiscard]] bool waitUntilIdle(std::chrono::milliseconds limit = std::chrono::seconds(10)) const;

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_asked;
    mutable std::optional<TimePoint> m_deadline;
    TimePoint m_now{std::chrono::hours(1)};
    std::vector<std::weak_ptr<std::function<void()>>> m_wakes;
};

} // namespace nightjar
