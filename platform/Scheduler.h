// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Date.h"

#include <chrono>
#include <functional>
#include <memory>

namespace nightjar {

/// Time that no setting of the clock moves and that stands still while the computer sleeps; since some
/// instant of this run.
using SteadyTime = std::chrono::steady_clock::time_point;

/// Keeps a timer alive; destroying or cancelling it disarms the timer, also from within its own callback.
class Timer {
public:
    Timer() = default;
    explicit Timer(std::shared_ptr<void> armed) : m_armed(std::move(armed)) {}
    void cancel() { m_armed.reset(); }
    [[nodiscard]] explicit operator bool() const { return m_armed != nullptr; }

private:
    std::shared_ptr<void> m_armed;
};

/// Time on the main thread: the date, monotonic time, and timers on the latter. Callbacks run on the main
/// thread, never inside the call that armed them.
class Scheduler {
public:
    virtual ~Scheduler() = default;
    [[nodiscard]] virtual Date now() const = 0;
    [[nodiscard]] virtual SteadyTime steadyNow() const = 0;
    [[nodiscard]] virtual Timer after(std::chrono::milliseconds delay, std::function<void()> callback) = 0;
    [[nodiscard]] virtual Timer every(std::chrono::milliseconds period, std::function<void()> callback) = 0;
};

} // namespace nightjar
