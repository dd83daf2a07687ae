// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/program/OutputQueue.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nightjar::bridge {
namespace {

/// Above this the radio and the requests wait. Some thousand node lines.
constexpr std::size_t enough = std::size_t{512} << 10;

void avoidBlocking(int descriptor) {
    struct stat status {};
    // A terminal's flags are shared with the shell that stands behind it.
    if (::fstat(descriptor, &status) != 0 || (!S_ISFIFO(status.st_mode) && !S_ISSOCK(status.st_mode)))
        return;
    const int flags = ::fcntl(descriptor, F_GETFL);
    if (flags >= 0)
        ::fcntl(descriptor, F_SETFL, flags | O_NONBLOCK);
}

} // namespace

OutputQueue::OutputQueue(int descriptor) : m_descriptor(descriptor) {
    avoidBlocking(descriptor);
}

bool OutputQueue::hasRoom() const {
    return m_bytes.size() - m_written < enough;
}

bool OutputQueue::waitsForReader() const {
    return m_descriptor >= 0 && !m_heldUntil && m_written < limit();
}

void OutputQueue::writeLine(std::string_view line) {
    if (m_cutNext && !m_cut) {
        m_cut = Cut{m_bytes.size() + line.size() / 2, *m_cutNext};
        m_cutNext.reset();
    }
    writeRaw(line);
}

void OutputQueue::writeRaw(std::string_view bytes) {
    if (m_descriptor >= 0 && !m_closing)
        m_bytes += bytes;
}

bool OutputQueue::flush(Moment::TimePoint now) {
    if (m_heldUntil && now < *m_heldUntil)
        return true;
    m_heldUntil.reset();
    if (!writeUpToLimit())
        return false;
    if (m_cut && m_written == m_cut->at) {
        m_heldUntil = now + std::chrono::ceil<Moment::TimePoint::duration>(m_cut->wait);
        m_cut.reset();
    }
    dropWritten();
    if (m_closing && isEmpty() && m_descriptor >= 0) {
        ::close(m_descriptor);
        m_descriptor = -1;
    }
    return true;
}

bool OutputQueue::writeUpToLimit() {
    while (m_descriptor >= 0 && m_written < limit()) {
        const auto count = ::write(m_descriptor, m_bytes.data() + m_written, limit() - m_written);
        if (count >= 0) {
            m_written += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            return errno == EAGAIN;
        }
    }
    return true;
}

void OutputQueue::dropWritten() {
    // Moving the rest forward on each write would cost more than the writing itself.
    if (!isEmpty() && m_written < enough / 2)
        return;
    m_bytes.erase(0, m_written);
    if (m_cut)
        m_cut->at -= m_written;
    m_written = 0;
}

} // namespace nightjar::bridge
