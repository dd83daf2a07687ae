// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/simulated/FakePollClock.h"

namespace nightjar {

PollClock::TimePoint FakePollClock::now() const {
    const std::lock_guard lock(m_mutex);
    return m_now;
}

int FakePollClock::pollTimeout(std::optional<TimePoint> deadline) const {
    const std::lock_guard lock(m_mutex);
    m_deadline = deadline;
    m_asked.notify_all();
    return deadline && *deadline <= m_now ? 0 : -1;
}

PollClock::Registration FakePollClock::onJump(std::function<void()> wake) {
    auto kept = std::make_shared<std::function<void()>>(std::move(wake));
    const std::lock_guard lock(m_mutex);
    m_wakes.push_back(kept);
    return Registration(std::move(kept));
}

void FakePollClock::advance(std::chrono::nanoseconds step) {
    std::vector<std::shared_ptr<std::function<void()>>> wakes;
    {
        const std::lock_guard lock(m_mutex);
        m_now += step;
        std::erase_if(m_wakes, [](const auto& wake) { return wake.expired(); });
        for (const auto& wake : m_wakes)
            wakes.push_back(wake.lock());
    }
    for (const auto& wake : wakes) {
        if (wake)
            (*wake)();
    }
}

bool FakePollClock::waitUntilArmed(std::chrono::nanoseconds fromNow, std::chrono::milliseconds limit) const {
    std::unique_lock lock(m_mutex);
    return m_asked.wait_for(lock, limit, [&] { return m_deadline == m_now + fromNow; });
}

bool FakePollClock::waitUntilIdle(std::chrono::milliseconds limit) const {
    std::unique_lock lock(m_mutex);
    return m_asked.wait_for(lock, limit, [&] { return !m_deadline; });
}

} // namespace nightjar
