// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "radio/RadioThread.h"

#include <csignal>
#include <poll.h>
#include <span>
#include <utility>

namespace nightjar {
namespace {

/// Writing to a bridge that is gone raises SIGPIPE in the thread that writes, and must not end the program;
/// all other signals are for the main thread.
void blockSignals() {
    sigset_t signals;
    sigfillset(&signals);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

} // namespace

RadioThread::RadioThread(const HostEnvironment& host, MainThread& mainThread, PollClock& clock,
                         const MeshRadioOptions& options)
    : m_clock(clock),
      m_wake(std::make_shared<WakeSignal>()),
      m_inbox(
          std::make_shared<MainThreadInbox>(mainThread, clock, options, [wake = m_wake] { wake->ring(); })),
      m_client(host, clock, *m_inbox, options),
      m_jumps(clock.onJump([wake = m_wake] { wake->ring(); })),
      m_thread([this](const std::stop_token& stop) { run(stop); }) {}

RadioThread::~RadioThread() {
    m_thread.request_stop();
    m_wake->ring();
    m_thread.join();
    m_inbox->close();
}

void RadioThread::post(Task task) {
    {
        const std::lock_guard lock(m_mutex);
        m_tasks.push_back(std::move(task));
    }
    m_wake->ring();
}

void RadioThread::run(const std::stop_token& stop) {
    blockSignals();
    std::vector<pollfd> entries;
    while (!stop.stop_requested()) {
        runTasks();
        m_client.deliver();

        entries.assign(1, {m_wake->descriptor(), POLLIN, 0});
        m_client.addPollEntries(entries);
        const int timeout = m_clock.pollTimeout(m_client.nextDeadline());
        if (::poll(entries.data(), entries.size(), timeout) < 0) {
            for (auto& entry : entries)
                entry.revents = 0;
        }
        if (entries.front().revents != 0)
            m_wake->clear();
        m_client.afterPoll(std::span(entries).subspan(1));
        m_client.deliver();
    }
    m_client.shutDown();
}

void RadioThread::runTasks() {
    std::vector<Task> tasks;
    {
        const std::lock_guard lock(m_mutex);
        tasks.swap(m_tasks);
    }
    for (auto& task : tasks)
        task(m_client);
}

} // namespace nightjar
