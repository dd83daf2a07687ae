// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "radio/WriteQueue.h"

#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace nightjar {

bool WriteQueue::add(const Uuid& request, std::string line) {
    if (line.size() > m_limit - std::min(m_limit, m_bytes))
        return false;
    m_bytes += line.size();
    m_lines.push_back({request, std::move(line)});
    return true;
}

void WriteQueue::withdraw(const Uuid& request) {
    const auto found = std::ranges::find(m_lines, request, &Line::request);
    if (found == m_lines.end() || (found == m_lines.begin() && m_written > 0))
        return;
    m_bytes -= found->text.size();
    m_lines.erase(found);
}

std::optional<WriteQueue::Failure> WriteQueue::flush(int descriptor) {
    while (!m_lines.empty()) {
        const auto& text = m_lines.front().text;
        const auto count = ::write(descriptor, text.data() + m_written, text.size() - m_written);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
            return std::nullopt;
        if (count < 0) {
            Failure failure{m_lines.front().request, std::error_code(errno, std::system_category())};
            dropFirst();
            return failure;
        }
        m_written += static_cast<std::size_t>(count);
        if (m_written == text.size())
            dropFirst();
    }
    return std::nullopt;
}

void WriteQueue::dropFirst() {
    m_bytes -= m_lines.front().text.size();
    m_written = 0;
    m_lines.pop_front();
}

} // namespace nightjar
