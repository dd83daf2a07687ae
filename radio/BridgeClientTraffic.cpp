// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "radio/BridgeClient.h"

#include <cerrno>
#include <sys/ioctl.h>
#include <utility>

namespace nightjar {
namespace {

bool willWork(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

/// An exit counts once what the bridge wrote before it has been read: the system knows how much that is.
void noteExit(BridgeInstance& instance) {
    if (!instance.child.hasExited())
        return;
    int unread = 0;
    ::ioctl(instance.child.output.get(), FIONREAD, &unread);
    instance.unreadAfterExit = static_cast<std::size_t>(unread);
}

} // namespace

void BridgeClient::addPollEntries(std::vector<pollfd>& entries) const {
    const auto first = entries.size();
    entries.resize(first + entryCount, pollfd{-1, POLLIN, 0});
    if (m_instance) {
        const bool gone = m_instance->unreadAfterExit.has_value();
        if (!gone)
            entries[first + exitEntry].fd = m_instance->child.exitDescriptor();
        if (!m_inbox.isFull())
            entries[first + outputEntry].fd = m_instance->child.output.get();
        entries[first + errorsEntry].fd = m_instance->child.errors.get();
        if (!m_instance->writes.isEmpty() && !gone) {
            entries[first + inputEntry] = {m_instance->child.input.get(), POLLOUT, 0};
        }
    }
    m_leaving.addPollEntries(entries);
}

std::optional<PollClock::TimePoint> BridgeClient::nextDeadline() const {
    auto next = m_leaving.nextDeadline();
    const auto consider = [&](std::optional<PollClock::TimePoint> other) {
        if (other && (!next || *other < *next))
            next = other;
    };
    if (m_instance)
        consider(m_instance->endBy);
    if (!m_pausedSince)
        consider(m_pending.nextDeadline());
    return next;
}

/// While reading pauses, the answers lie unread, or the bridge cannot even write them: that time is not the
/// bridge's and does not count against its requests.
void BridgeClient::notePause() {
    const auto now = m_clock.now();
    if (m_inbox.isFull()) {
        if (!m_pausedSince)
            m_pausedSince = now;
    } else if (m_pausedSince) {
        m_pending.postpone(now - *m_pausedSince);
        m_pausedSince.reset();
    }
}

void BridgeClient::afterPoll(std::span<const pollfd> polled) {
    notePause();
    // Each step may stop the bridge, and a new one may take its place at once; the rest then is not for that
    // one.
    if (const auto instance = m_instance) {
        const auto isDue = [&](PollEntry entry) {
            return isCurrent(*instance) && polled[entry].revents != 0;
        };
        if (isDue(outputEntry))
            readOutput(*instance);
        if (isDue(errorsEntry))
            readErrors(*instance);
        if (isDue(inputEntry))
            write(*instance);
        if (isDue(exitEntry))
            noteExit(*instance);
        while (isCurrent(*instance) && instance->unreadAfterExit && !m_inbox.isFull())
            readOutput(*instance);
    }
    const auto now = m_clock.now();
    m_leaving.attend(now);
    proceed();
    if (m_instance && m_instance->endBy && *m_instance->endBy <= now) {
        stopInstance({MeshRadioError::Kind::cancelled});
    }
    notePause();
    if (!m_pausedSince)
        expireRequests(now);
}

void BridgeClient::readOutput(BridgeInstance& instance) {
    const MeshRadioError stopped{MeshRadioError::Kind::bridgeStopped};
    auto& unread = instance.unreadAfterExit;
    if (unread == 0) {
        stopInstance(stopped);
        return;
    }

    const auto wanted = unread ? std::min(*unread, m_buffer.size()) : m_buffer.size();
    const auto count = ::read(instance.child.output.get(), m_buffer.data(), wanted);
    if (count < 0 && willWork(errno) && !unread)
        return;
    // A bridge that lives on without its output would be a watch that is blind and looks healthy.
    if (count <= 0) {
        stopInstance(stopped);
        return;
    }

    const auto length = static_cast<std::size_t>(count);
    if (unread)
        *unread -= length;
    instance.lines.feed({m_buffer.data(), length},
                        [&](std::string_view line) { return handleLine(line, instance); });
    deliver();
}

void BridgeClient::readErrors(BridgeInstance& instance) {
    const auto count = ::read(instance.child.errors.get(), m_buffer.data(), m_buffer.size());
    if (count == 0 || (count < 0 && !willWork(errno)))
        instance.child.errors.reset();
}

/// False when nothing more of this bridge is wanted.
bool BridgeClient::handleLine(std::string_view line, const BridgeInstance& instance) {
    auto response = m_decoder.decode<MeshtasticBridgeResponse>(line);
    if (!response)
        return true;
    if (response->protocolVersion != meshtasticBridgeProtocolVersion) {
        stopInstance(MeshRadioError::incompatibleVersion());
        return false;
    }
    m_pending.resolve(*response);
    if (!isCurrent(instance))
        return false;

    using enum MeshtasticBridgeEvent;
    const bool isMereAnswer =
        response->requestID && (response->event == connected || response->event == sent);
    if (!isMereAnswer) {
        queue(
            [listener = instance.listener, event = std::move(*response)] {
                if (listener->onEvent)
                    listener->onEvent(event);
            },
            sizeof(MeshtasticBridgeResponse) + line.size());
    }
    return true;
}

/// A failed write fails its own request only: a bridge that has closed its input is still heard. One that is
/// about to exit also cannot be written to; its requests then fail with its exit, which says more.
void BridgeClient::write(BridgeInstance& instance) {
    while (isCurrent(instance)) {
        const auto failure = instance.writes.flush(instance.child.input.get());
        if (!failure)
            return;
        if (instance.child.isGoing())
            continue;
        m_pending.fail(failure->request, MeshRadioError::couldNot("reached", failure->error));
    }
}

void BridgeClient::expireRequests(PollClock::TimePoint now) {
    for (auto& [request, slot] : m_pending.takeExpired(now)) {
        // What has not been begun must not reach a bridge that wakes up later.
        if (m_instance)
            m_instance->writes.withdraw(request);
        slot(std::unexpected(MeshRadioError{MeshRadioError::Kind::requestTimedOut}));
    }
}

} // namespace nightjar
