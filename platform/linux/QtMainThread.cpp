// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/QtMainThread.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace nightjar {
namespace {

/// A turn gives the event loop back after this long, so that a flood of jobs delays no timer and no key.
constexpr std::chrono::milliseconds longestTurn{10};

int makeBell() {
    const int fd = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (fd < 0)
        throw std::system_error(errno, std::system_category(), "eventfd");
    return fd;
}

} // namespace

QtMainThread::QtMainThread() : m_bell(makeBell()), m_notifier(m_bell, QSocketNotifier::Read) {
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { runJobs(); });
}

QtMainThread::~QtMainThread() {
    m_notifier.setEnabled(false);
    Jobs unrun;
    {
        const std::lock_guard lock(m_mutex);
        m_closed = true;
        unrun.swap(m_posted);
    }
    // Outside the lock: what a job owns may post when it goes.
    unrun.clear();
    m_due.clear();
    ::close(m_bell);
}

void QtMainThread::post(std::move_only_function<void()> job) {
    const std::lock_guard lock(m_mutex);
    if (m_closed)
        return;
    m_posted.push_back(std::move(job));
    if (m_ringing)
        return;
    m_ringing = true;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(m_bell, &one, sizeof one);
}

// The bell stays audible until the last job is done. A turn that ends early is so continued after the other
// events had theirs, and a job that runs an event loop of its own does not hold up the jobs behind it.
void QtMainThread::runJobs() {
    takePosted();
    const auto end = std::chrono::steady_clock::now() + longestTurn;
    for (auto left = m_due.size(); left > 0 && !m_due.empty(); --left) {
        auto job = std::move(m_due.front());
        m_due.pop_front();
        job();
        if (std::chrono::steady_clock::now() >= end)
            break;
    }
    stopRingingWhenDone();
}

void QtMainThread::takePosted() {
    const std::lock_guard lock(m_mutex);
    if (m_due.empty())
        m_due.swap(m_posted);
    std::move(m_posted.begin(), m_posted.end(), std::back_inserter(m_due));
    m_posted.clear();
}

void QtMainThread::stopRingingWhenDone() {
    const std::lock_guard lock(m_mutex);
    if (!m_due.empty() || !m_posted.empty())
        return;
    m_ringing = false;
    std::uint64_t count = 0;
    [[maybe_unused]] const auto taken = ::read(m_bell, &count, sizeof count);
}

} // namespace nightjar
