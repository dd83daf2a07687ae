// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/LineInput.h"

#include <QMetaObject>

#include <array>
#include <cerrno>

#include <unistd.h>

namespace nightjar::headless {

LineInput::LineInput(int descriptor, Listener listener)
    : m_descriptor(descriptor), m_listener(std::move(listener)) {
    m_readable.setSocket(descriptor);
    connect(&m_readable, &QSocketNotifier::activated, this, &LineInput::read);
}

void LineInput::start() {
    m_started = true;
    m_readable.setEnabled(!m_paused && !m_ended);
}

void LineInput::setPaused(bool paused) {
    if (m_paused == paused)
        return;
    m_paused = paused;
    m_readable.setEnabled(m_started && !m_paused && !m_ended);
    if (!paused)
        QMetaObject::invokeMethod(this, &LineInput::tellLines, Qt::QueuedConnection);
}

void LineInput::read() {
    if (m_paused || m_ended)
        return;
    std::array<char, std::size_t{64} << 10> bytes;
    const auto count = ::read(m_descriptor, bytes.data(), bytes.size());
    if (count > 0) {
        m_lines.append({bytes.data(), static_cast<std::size_t>(count)});
    } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
        m_ended = true;
        m_readable.setEnabled(false);
        m_lines.end();
    }
    tellLines();
}

void LineInput::tellLines() {
    if (m_telling)
        return;
    m_telling = true;
    while (!m_paused) {
        const auto line = m_lines.next();
        if (!line)
            break;
        if (line->tooLong)
            m_listener.onTooLongLine();
        else
            m_listener.onLine(line->text);
    }
    m_telling = false;
    if (m_paused || !m_ended || m_toldEnd)
        return;
    m_toldEnd = true;
    m_listener.onEnd();
}

} // namespace nightjar::headless
