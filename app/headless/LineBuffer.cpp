// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/LineBuffer.h"

namespace nightjar::headless {

void LineBuffer::append(std::string_view bytes) {
    if (m_start > 0) {
        m_bytes.erase(0, m_start);
        m_searched -= m_start;
        m_start = 0;
    }
    m_bytes.append(bytes);
}

void LineBuffer::end() {
    if (m_start < m_bytes.size())
        m_bytes += '\n';
}

std::optional<LineBuffer::Line> LineBuffer::next() {
    while (true) {
        const auto feed = m_bytes.find('\n', m_searched);
        const bool complete = feed != std::string::npos;
        const auto stop = complete ? feed : m_bytes.size();
        const auto length = stop - m_start;

        const bool tooLong = !m_skipping && length > m_longestLine;
        const bool tellsLine = complete && !m_skipping && !tooLong;
        std::optional<Line> line;
        if (tellsLine)
            line = Line{m_bytes.substr(m_start, length)};
        else if (tooLong)
            line = Line{{}, true};

        m_skipping = !complete && (m_skipping || tooLong);
        m_searched = complete ? feed + 1 : m_bytes.size();
        if (complete || m_skipping)
            m_start = m_searched;
        if (line || !complete)
            return line;
    }
}

} // namespace nightjar::headless
