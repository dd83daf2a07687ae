// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "program/EndSignals.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>

#include <fcntl.h>
#include <unistd.h>

namespace nightjar {
namespace {

/// A pipe and not a signalfd: blocked signals would stay blocked in every thread and child.
std::array<int, 2> bell{-1, -1};
std::atomic<std::int64_t> askedAt = 0; ///< monotonic milliseconds; 0 = not yet
static_assert(std::atomic<std::int64_t>::is_always_lock_free);

/// Programs that pass signals on often send one twice, to the process and to its group: that is one wish, not
/// two.
constexpr std::int64_t sameWishMilliseconds = 300;

extern "C" void askToEnd(int number) {
    const int error = errno;
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    const auto now = std::int64_t{time.tv_sec} * 1000 + time.tv_nsec / 1'000'000;
    if (askedAt == 0) {
        askedAt = now;
        [[maybe_unused]] const auto written = ::write(bell[1], "", 1);
    } else if (number == SIGINT && now - askedAt > sameWishMilliseconds) {
        ::_exit(128 + SIGINT);
    }
    errno = error;
}

bool isIgnored(int number) {
    struct sigaction present {};
    return ::sigaction(number, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

} // namespace

EndSignals::EndSignals() {
    if (::pipe2(bell.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_asked.setSocket(bell[0]);
    m_asked.setEnabled(true);
    connect(&m_asked, &QSocketNotifier::activated, this, [this] {
        m_asked.setEnabled(false);
        Q_EMIT endRequested();
    });

    struct sigaction action {};
    action.sa_handler = askToEnd;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
    // Who started the program under nohup wants it to outlive the terminal.
    if (!isIgnored(SIGHUP))
        ::sigaction(SIGHUP, &action, nullptr);
}

} // namespace nightjar
