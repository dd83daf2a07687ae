// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/MainThread.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace nightjar {

/// A main thread without an event loop: posted jobs wait until whoever plays the main thread runs them.
class ManualMainThread final : public MainThread {
public:
    void post(std::move_only_function<void()> job) override;

    /// Runs the jobs that wait now and those that they post; returns how many that were.
    std::size_t runPending();
    /// Runs jobs as they come until `condition` holds; false when it does not within `limit`. The condition
    /// is looked at after every job, and now and then while no job comes.
    [[nodiscard]] bool runUntil(const std::function<bool()>& condition,
                                std::chrono::milliseconds limit = std::chrono::seconds(10));
    [[nodiscard]] std::size_t waitingJobs() const;

private:
    bool runOne();

    mutable std::mutex m_mutex;
    std::condition_variable m_posted;
    std::deque<std::move_only_function<void()>> m_jobs;
};

} // namespace nightjar
