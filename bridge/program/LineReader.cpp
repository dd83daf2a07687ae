// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/program/LineReader.h"

#include <array>
#include <cerrno>
#include <utility>

#include <unistd.h>

namespace nightjar::bridge {
namespace {

constexpr std::size_t longestLine = std::size_t{1} << 20;

} // namespace

bool LineReader::fill() {
    std::array<char, 16384> chunk;
    const auto count = ::read(m_descriptor, chunk.data(), chunk.size());
    if (count < 0)
        return errno == EINTR || errno == EAGAIN;
    m_bytes.append(chunk.data(), static_cast<std::size_t>(count));
    if (m_bytes.size() > longestLine && !hasLine()) {
        m_bytes.clear();
        m_searched = 0;
        m_skipping = true;
    }
    return count > 0;
}

std::optional<std::string> LineReader::next() {
    for (;;) {
        const auto end = m_bytes.find('\n', m_searched);
        if (end == std::string::npos) {
            m_searched = m_bytes.size();
            return std::nullopt;
        }
        std::string line = m_bytes.substr(0, end);
        m_bytes.erase(0, end + 1);
        m_searched = 0;
        if (!std::exchange(m_skipping, false))
            return line;
    }
}

} // namespace nightjar::bridge
