// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/simulated/ManualMainThread.h"

#include <utility>

namespace nightjar {

void ManualMainThread::post(std::move_only_function<void()> job) {
    {
        const std::lock_guard lock(m_mutex);
        m_jobs.push_back(std::move(job));
    }
    m_posted.notify_all();
}

bool ManualMainThread::runOne() {
    std::move_only_function<void()> job;
    {
        const std::lock_guard lock(m_mutex);
        if (m_jobs.empty())
            return false;
        job = std::move(m_jobs.front());
        m_jobs.pop_front();
    }
    job();
    return true;
}

std::size_t ManualMainThread::runPending() {
    std::size_t count = 0;
    while (runOne())
        ++count;
    return count;
}

bool ManualMainThread::runUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (runOne())
            continue;
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::unique_lock lock(m_mutex);
        m_posted.wait_for(lock, std::chrono::milliseconds(2), [&] { return !m_jobs.empty(); });
    }
    return true;
}

std::size_t ManualMainThread::waitingJobs() const {
    const std::lock_guard lock(m_mutex);
    return m_jobs.size();
}

} // namespace nightjar
