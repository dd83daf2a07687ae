// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "radio/MainThreadInbox.h"

#include <utility>

namespace nightjar {

MainThreadInbox::MainThreadInbox(MainThread& mainThread, const PollClock& clock,
                                 const MeshRadioOptions& options, std::function<void()> onRoom)
    : m_mainThread(mainThread),
      m_clock(clock),
      m_onRoom(std::move(onRoom)),
      m_highBytes(options.inboxHighBytes),
      m_lowBytes(options.inboxLowBytes),
      m_slice(options.mainThreadSlice) {}

void MainThreadInbox::push(std::vector<Job>& jobs) {
    if (jobs.empty())
        return;
    Batch batch{std::exchange(jobs, {}), 0};
    for (const auto& job : batch.jobs)
        batch.bytes += job.bytes;
    {
        const std::lock_guard lock(m_mutex);
        m_bytes += batch.bytes;
        if (m_bytes >= m_highBytes)
            m_full = true;
        m_batches.push_back(std::move(batch));
        if (std::exchange(m_awake, true))
            return;
    }
    wakeMainThread();
}

void MainThreadInbox::wakeMainThread() {
    m_mainThread.post([weak = weak_from_this()] {
        if (const auto inbox = weak.lock())
            inbox->drain();
    });
}

void MainThreadInbox::drain() {
    if (m_closed)
        return;
    const auto until = m_clock.now() + m_slice;
    do {
        if (m_next == m_current.jobs.size() && !takeNextBatch())
            return;
        auto job = std::exchange(m_current.jobs[m_next++].run, {});
        job();
        // What a job tells may end the owner of this inbox.
        if (m_closed)
            return;
    } while (m_clock.now() < until);
    wakeMainThread();
}

bool MainThreadInbox::takeNextBatch() {
    bool room = false;
    bool more = true;
    {
        const std::lock_guard lock(m_mutex);
        m_bytes -= m_current.bytes;
        if (m_full && m_bytes < m_lowBytes) {
            m_full = false;
            room = true;
        }
        m_current = {};
        m_next = 0;
        if (m_batches.empty()) {
            m_awake = false;
            more = false;
        } else {
            m_current = std::move(m_batches.front());
            m_batches.pop_front();
        }
    }
    if (room)
        m_onRoom();
    return more;
}

void MainThreadInbox::close() {
    m_closed = true;
    std::deque<Batch> dropped;
    {
        const std::lock_guard lock(m_mutex);
        dropped.swap(m_batches);
    }
    m_current = {};
    m_next = 0;
}

} // namespace nightjar
