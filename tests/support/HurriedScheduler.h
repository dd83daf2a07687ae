// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Scheduler.h"

#include <algorithm>
#include <utility>

namespace nightjar::testing {

/// Real time made to pass faster, so that a wait of half a minute takes seconds while real processes answer
/// in between. Main thread.
class HurriedScheduler final : public Scheduler {
public:
    HurriedScheduler(Scheduler& real, int factor)
        : m_real(real), m_factor(factor), m_start(real.steadyNow()), m_startDate(real.now()) {}

    [[nodiscard]] Date now() const override { return m_startDate + Seconds(passed()); }
    [[nodiscard]] SteadyTime steadyNow() const override { return m_start + passed(); }
    [[nodiscard]] Timer after(std::chrono::milliseconds delay, std::function<void()> callback) override {
        return m_real.after(shortened(delay), std::move(callback));
    }
    [[nodiscard]] Timer every(std::chrono::milliseconds period, std::function<void()> callback) override {
        return m_real.every(shortened(period), std::move(callback));
    }

private:
    [[nodiscard]] SteadyTime::duration passed() const { return (m_real.steadyNow() - m_start) * m_factor; }
    [[nodiscard]] std::chrono::milliseconds shortened(std::chrono::milliseconds time) const {
        return std::max(time / m_factor, std::chrono::milliseconds(1));
    }

    Scheduler& m_real;
    int m_factor;
    SteadyTime m_start;
    Date m_startDate;
};

} // namespace nightjar::testing
