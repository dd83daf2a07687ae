// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/MainThread.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <time.h>

namespace nightjar::bench {

/// A main thread that does nothing but its posted jobs, and knows how long the longest of them kept it busy:
/// in time on the processor, since on a loaded machine other programs take their share of the clock on the
/// wall.
class BusyMainThread final : public MainThread {
public:
    void post(std::move_only_function<void()> job) override {
        {
            const std::lock_guard lock(m_mutex);
            m_jobs.push_back(std::move(job));
        }
        m_posted.notify_one();
    }

    template <class Condition>
    void runUntil(const Condition& condition) {
        while (!condition())
            runOne();
    }

    [[nodiscard]] double longestMilliseconds() const { return m_longest.count(); }

private:
    void runOne() {
        std::move_only_function<void()> job;
        {
            std::unique_lock lock(m_mutex);
            m_posted.wait(lock, [&] { return !m_jobs.empty(); });
            job = std::move(m_jobs.front());
            m_jobs.pop_front();
        }
        const auto start = processorTime();
        job();
        m_longest = std::max(m_longest, processorTime() - start);
    }

    using Milliseconds = std::chrono::duration<double, std::milli>;

    static Milliseconds processorTime() {
        timespec time{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    }

    std::mutex m_mutex;
    std::condition_variable m_posted;
    std::deque<std::move_only_function<void()>> m_jobs;
    Milliseconds m_longest{};
};

} // namespace nightjar::bench
