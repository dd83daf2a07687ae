// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Scheduler.h"

#include <cstdint>
#include <vector>

namespace nightjar {

/// Time that stands still until it is told to pass, so that a day takes a microsecond. One thread.
class FakeScheduler final : public Scheduler {
public:
    /// 2025-05-01 12:00:00 UTC unless told otherwise.
    explicit FakeScheduler(Date start = dateFromUnixSeconds(1'746'100'800));

    [[nodiscard]] Date now() const override { return m_now; }
    [[nodiscard]] SteadyTime steadyNow() const override { return SteadyTime(m_elapsed); }
    [[nodiscard]] Timer after(std::chrono::milliseconds delay, std::function<void()> callback) override;
    [[nodiscard]] Timer every(std::chrono::milliseconds period, std::function<void()> callback) override;

    /// Lets time pass and runs what falls due on the way, each at its own time, those of one time in the
    /// order in which they were armed. Timers armed on the way count too.
    void advance(std::chrono::milliseconds time);
    /// Sets the date alone, as a user or a time server does; timers do not notice.
    void setDate(Date date) { m_now = date; }
    [[nodiscard]] std::size_t armedTimers() const;

private:
    struct Entry;

    [[nodiscard]] Timer arm(std::chrono::milliseconds delay, std::chrono::milliseconds period,
                            std::function<void()> callback);
    [[nodiscard]] std::shared_ptr<Entry> nextDue(std::chrono::milliseconds until);
    void elapseTo(std::chrono::milliseconds time);
    void fire(const std::shared_ptr<Entry>& entry);

    Date m_now;
    std::chrono::milliseconds m_elapsed{0};
    std::uint64_t m_armed = 0;
    std::vector<std::weak_ptr<Entry>> m_entries;
};

} // namespace nightjar
