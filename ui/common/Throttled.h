// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Scheduler.h"

#include <QObject>

#include <chrono>
#include <functional>
#include <optional>
#include <utility>

namespace nightjar {

/// Runs a view's refresh at the end of a turn of the event loop, but never more often than once in an
/// interval: for records that change many times a second.
class Throttled final : public QObject {
    Q_OBJECT
public:
    Throttled(Scheduler& scheduler, std::chrono::milliseconds interval, std::function<void()> run,
              QObject* parent = nullptr)
        : QObject(parent), m_scheduler(scheduler), m_interval(interval), m_run(std::move(run)) {}

public Q_SLOTS:
    void request() {
        if (std::exchange(m_isRequested, true))
            return;
        const auto now = m_scheduler.steadyNow();
        const auto passed = m_lastRun ? now - *m_lastRun : m_interval;
        if (passed >= m_interval)
            QMetaObject::invokeMethod(this, &Throttled::runNow, Qt::QueuedConnection);
        else
            m_timer = m_scheduler.after(std::chrono::ceil<std::chrono::milliseconds>(m_interval - passed),
                                        [this] { runNow(); });
    }

private:
    void runNow() {
        m_isRequested = false;
        m_timer.cancel();
        m_lastRun = m_scheduler.steadyNow();
        m_run();
    }

    Scheduler& m_scheduler;
    std::chrono::milliseconds m_interval;
    std::function<void()> m_run;
    Timer m_timer;
    std::optional<SteadyTime> m_lastRun;
    bool m_isRequested = false;
};

} // namespace nightjar
