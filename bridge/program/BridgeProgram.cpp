// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/program/BridgeProgram.h"

#include "bridge/program/RadioOpening.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace nightjar::bridge {
namespace {

/// How long what is left may take at the end.
constexpr std::chrono::milliseconds farewell{500};

int watchSignals() {
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGTERM);
    sigaddset(&ending, SIGINT);
    sigaddset(&ending, SIGHUP);
    sigprocmask(SIG_BLOCK, &ending, nullptr);
    std::signal(SIGPIPE, SIG_IGN); // A client that died shows up as EPIPE.
    return ::signalfd(-1, &ending, SFD_CLOEXEC | SFD_NONBLOCK);
}

timespec remaining(Moment::TimePoint due) {
    const auto left = std::max(due - std::chrono::steady_clock::now(), Moment::TimePoint::duration::zero());
    const auto seconds = std::chrono::floor<std::chrono::seconds>(left);
    return {.tv_sec = seconds.count(), .tv_nsec = (left - seconds).count()};
}

} // namespace

BridgeProgram::BridgeProgram(int input, int output, int standardError)
    : m_input(input),
      m_signals(watchSignals()),
      m_reader(input),
      m_output(output),
      m_errors(standardError),
      m_server(m_output, radioOpener(*this)) {}

BridgeProgram::~BridgeProgram() {
    if (m_signals >= 0)
        ::close(m_signals);
}

Moment BridgeProgram::now() {
    const auto sinceUnix = std::chrono::system_clock::now().time_since_epoch();
    return {std::chrono::steady_clock::now(), dateFromUnixSeconds(Seconds(sinceUnix).count())};
}

void BridgeProgram::refuseToEnd(Seconds duration) {
    m_stubbornUntil =
        std::chrono::steady_clock::now() + std::chrono::ceil<std::chrono::nanoseconds>(duration);
}

bool BridgeProgram::isEnding() const {
    if (m_exitCode || m_clientGone)
        return true;
    if (m_inputOpen && !m_askedToEnd)
        return false;
    return !m_stubbornUntil || std::chrono::steady_clock::now() >= *m_stubbornUntil;
}

int BridgeProgram::run() {
    m_server.greet();
    work();
    while (!isEnding()) {
        wait();
        work();
    }
    drain();
    if (m_exitCode)
        return *m_exitCode;
    return m_clientGone ? 1 : 0;
}

std::optional<Moment::TimePoint> BridgeProgram::nextDue() const {
    std::optional<Moment::TimePoint> due = m_output.due();
    const auto consider = [&](std::optional<Moment::TimePoint> other) {
        if (other && (!due || *other < *due))
            due = other;
    };
    if (m_output.hasRoom())
        consider(m_server.waits().due);
    if (m_output.hasRoom() && m_reader.hasLine())
        consider(Moment::TimePoint{}); // was held back until there was room
    if (m_askedToEnd || !m_inputOpen)
        consider(m_stubbornUntil);
    return due;
}

void BridgeProgram::wait() {
    enum Slot { signals, input, output, errors, radio };
    const RadioWait radioWait = m_server.waits();
    const bool room = m_output.hasRoom();
    const auto wanted = [](bool yes, short events) { return yes ? events : short{0}; };
    // Without room the ends are still watched for having closed.
    std::array<pollfd, 5> descriptors{{
        {m_askedToEnd ? -1 : m_signals, POLLIN, 0},
        {m_inputOpen ? m_input : -1, wanted(room, POLLIN), 0},
        {m_output.descriptor(), wanted(m_output.waitsForReader(), POLLOUT), 0},
        {m_errors.waitsForReader() ? m_errors.descriptor() : -1, POLLOUT, 0},
        {room ? radioWait.descriptor : -1, radioWait.events, 0},
    }};
    const auto due = nextDue();
    const timespec timeout = due ? remaining(*due) : timespec{};
    if (::ppoll(descriptors.data(), descriptors.size(), due ? &timeout : nullptr, nullptr) < 0) {
        if (errno != EINTR)
            m_exitCode = 1;
        return;
    }
    if (descriptors[signals].revents != 0)
        m_askedToEnd = true;
    if ((descriptors[output].revents & POLLERR) != 0)
        m_clientGone = true;
    if ((descriptors[input].revents & POLLIN) != 0)
        m_inputOpen = m_reader.fill();
    else if (descriptors[input].revents != 0)
        m_inputOpen = false;
    m_radioReady = descriptors[radio].revents;
}

void BridgeProgram::takeRequests() {
    while (m_output.hasRoom() && !m_exitCode) {
        const auto line = m_reader.next();
        if (!line)
            return;
        m_server.handleLine(*line, now());
        m_server.advance(now(), 0); // what is answered at once is so before the next request is looked at
    }
}

void BridgeProgram::work() {
    takeRequests();
    if (m_output.hasRoom() && !m_exitCode)
        m_server.advance(now(), std::exchange(m_radioReady, short{0}));
    const auto time = std::chrono::steady_clock::now();
    if (!m_output.flush(time))
        m_clientGone = true;
    std::ignore = m_errors.flush(time);
}

void BridgeProgram::drain() {
    const auto until = std::chrono::steady_clock::now() + farewell;
    while (!m_clientGone && !m_output.isEmpty() && std::chrono::steady_clock::now() < until) {
        pollfd descriptor{m_output.descriptor(), m_output.waitsForReader() ? short{POLLOUT} : short{0}, 0};
        const timespec timeout = remaining(std::min(until, m_output.due().value_or(until)));
        if (::ppoll(&descriptor, 1, &timeout, nullptr) < 0 && errno != EINTR)
            return;
        if (!m_output.flush(std::chrono::steady_clock::now()))
            return;
    }
}

} // namespace nightjar::bridge
