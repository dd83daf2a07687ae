// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>

namespace nightjar::bridge {

/// Real time since the radio was asked to connect.
using Elapsed = std::chrono::nanoseconds;

/// What a simulated radio is going to do, in the order of time. Things due at the same time happen in the
/// order in which they were entered, so that the outcome does not depend on how often somebody looks.
class Agenda {
public:
    using Task = std::move_only_function<void()>;

    void at(Elapsed due, Task task) { m_tasks.emplace(due, std::move(task)); }
    void in(Elapsed delay, Task task) { at(m_now + delay, std::move(task)); }

    /// The time of the task that runs, or the one last told by `setNow`.
    [[nodiscard]] Elapsed now() const { return m_now; }
    void setNow(Elapsed now) { m_now = now; }

    [[nodiscard]] std::optional<Elapsed> nextDue() const {
        if (m_tasks.empty())
            return std::nullopt;
        return m_tasks.begin()->first;
    }

    /// Runs the first task when it is due by `limit`; `now()` is then the time it was entered for.
    bool runNext(Elapsed limit) {
        if (m_tasks.empty() || m_tasks.begin()->first > limit)
            return false;
        auto first = m_tasks.extract(m_tasks.begin());
        m_now = first.key();
        first.mapped()();
        return true;
    }

    void clear() { m_tasks.clear(); }

private:
    std::multimap<Elapsed, Task> m_tasks;
    Elapsed m_now{};
};

} // namespace nightjar::bridge
