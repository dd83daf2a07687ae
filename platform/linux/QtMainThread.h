// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/MainThread.h"

#include <QSocketNotifier>

#include <deque>
#include <mutex>

namespace nightjar {

/// Runs posted jobs in Qt's event loop. Made and destroyed on the main thread; `post` may be called from any
/// thread until then. Other threads touch no Qt object: an eventfd wakes the loop.
class QtMainThread final : public MainThread {
public:
    QtMainThread();
    ~QtMainThread() override;
    QtMainThread(const QtMainThread&) = delete;
    QtMainThread& operator=(const QtMainThread&) = delete;

    void post(std::move_only_function<void()> job) override;

private:
    using Jobs = std::deque<std::move_only_function<void()>>;

    void runJobs();
    void takePosted();
    void stopRingingWhenDone();

    std::mutex m_mutex;
    Jobs m_posted;          ///< guarded by m_mutex
    bool m_ringing = false; ///< guarded by m_mutex: the eventfd is readable
    bool m_closed = false;  ///< guarded by m_mutex
    Jobs m_due;             ///< main thread only: taken over, not yet run
    int m_bell;
    QSocketNotifier m_notifier;
};

} // namespace nightjar
