// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/LineOutput.h"

#include <QMetaObject>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nightjar::headless {
namespace {

/// Written without waiting for the end of the turn, so that a burst does not pile up.
constexpr std::size_t burst = std::size_t{64} << 10;

} // namespace

LineOutput::LineOutput(int descriptor, std::size_t mark) : m_descriptor(descriptor), m_mark(mark) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || S_ISREG(status.st_mode)) {
        m_kind = Kind::plain;
    } else if (S_ISSOCK(status.st_mode)) {
        m_kind = Kind::socket;
    } else {
        // A second opening has a blocking mode of its own; setting it on ours would also set it for the
        // shell.
        const auto path = "/proc/self/fd/" + std::to_string(descriptor);
        const int own = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
        if (own >= 0) {
            m_descriptor = own;
            m_owned = true;
            m_kind = Kind::nonBlocking;
        }
    }
    m_writable.setSocket(m_descriptor);
    connect(&m_writable, &QSocketNotifier::activated, this, &LineOutput::writeOut);
}

LineOutput::~LineOutput() {
    m_writable.setEnabled(false);
    if (m_owned)
        ::close(m_descriptor);
}

void LineOutput::send(std::string_view line) {
    if (m_lost)
        return;
    m_bytes.append(line);
    m_bytes += '\n';
    if (isFull())
        m_wasFull = true;
    if (m_writable.isEnabled())
        return;
    if (waiting() >= burst)
        writeWaiting();
    if (m_scheduled)
        return;
    // `drained` is told from there: never inside this call, whose caller may be in the middle of its list.
    m_scheduled = true;
    QMetaObject::invokeMethod(this, &LineOutput::writeOut, Qt::QueuedConnection);
}

void LineOutput::writeOut() {
    m_scheduled = false;
    writeWaiting();
    if (!m_wasFull || waiting() > m_mark / 2)
        return;
    m_wasFull = false;
    if (!m_lost)
        Q_EMIT drained();
}

void LineOutput::writeWaiting() {
    bool blocked = false;
    while (!m_lost && !blocked && waiting() > 0) {
        const long count = writeSome();
        if (count > 0)
            m_written += static_cast<std::size_t>(count);
        else if (count == 0 || errno == EAGAIN)
            blocked = true;
        else if (errno != EINTR)
            fail(errno);
    }
    forgetWritten();
    if (m_writable.isEnabled() != blocked)
        m_writable.setEnabled(blocked);
}

void LineOutput::finish(std::chrono::milliseconds patience) {
    writeOut();
    while (!m_lost && waiting() > 0) {
        pollfd ready{m_descriptor, POLLOUT, 0};
        const int count = ::poll(&ready, 1, static_cast<int>(patience.count()));
        if (count == 0 || (count < 0 && errno != EINTR))
            return;
        writeOut();
    }
}

/// The count of written bytes; 0 or EAGAIN when the reader takes nothing now.
long LineOutput::writeSome() {
    const char* bytes = m_bytes.data() + m_written;
    switch (m_kind) {
    case Kind::socket:
        return ::send(m_descriptor, bytes, waiting(), MSG_DONTWAIT | MSG_NOSIGNAL);
    case Kind::careful: {
        // What poll promises room for is a piece of this size.
        pollfd ready{m_descriptor, POLLOUT, 0};
        if (::poll(&ready, 1, 0) == 0)
            return 0;
        return ::write(m_descriptor, bytes, std::min<std::size_t>(waiting(), PIPE_BUF));
    }
    case Kind::plain:
    case Kind::nonBlocking:
        break;
    }
    return ::write(m_descriptor, bytes, waiting());
}

void LineOutput::forgetWritten() {
    if (m_written == m_bytes.size()) {
        m_bytes.clear();
        // One very long answer should not keep its memory for the rest of the day.
        if (m_bytes.capacity() > 4 * m_mark)
            m_bytes.shrink_to_fit();
    } else if (m_written > m_bytes.size() / 2) {
        m_bytes.erase(0, m_written);
    } else {
        return;
    }
    m_written = 0;
}

void LineOutput::fail(int error) {
    m_lost = true;
    m_bytes.clear();
    m_written = 0;
    const bool readerLeft = error == EPIPE || error == ECONNRESET;
    Q_EMIT lost(readerLeft ? QString() : QString::fromLocal8Bit(std::strerror(error)));
}

} // namespace nightjar::headless
