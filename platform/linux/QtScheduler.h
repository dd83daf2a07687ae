// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Scheduler.h"

namespace nightjar {

/// Timers of Qt's event loop and the system's clock. Main thread; timers that outlive it are disarmed with
/// it. A delay or period is cut to 24 days.
class QtScheduler final : public Scheduler {
public:
    QtScheduler();
    ~QtScheduler() override;

    [[nodiscard]] Date now() const override;
    [[nodiscard]] SteadyTime steadyNow() const override { return std::chrono::steady_clock::now(); }
    [[nodiscard]] Timer after(std::chrono::milliseconds delay, std::function<void()> callback) override;
    [[nodiscard]] Timer every(std::chrono::milliseconds period, std::function<void()> callback) override;

private:
    class TimerTable;
    std::shared_ptr<TimerTable> m_timers;
};

} // namespace nightjar
