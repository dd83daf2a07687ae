// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "radio/LineSplitter.h"

#include <utility>

namespace nightjar {

void LineSplitter::feed(std::string_view bytes, const LineHandler& handle) {
    // Only new bytes are searched, so a long line costs the same per byte as a short one.
    while (!bytes.empty()) {
        const auto end = bytes.find('\n');
        if (end == std::string_view::npos) {
            keep(bytes);
            return;
        }
        const auto piece = bytes.substr(0, end);
        bytes.remove_prefix(end + 1);
        if (!finish(piece, handle))
            return;
    }
}

void LineSplitter::keep(std::string_view piece) {
    if (m_skipping)
        return;
    if (piece.size() > m_longestLine - m_partial.size()) {
        m_skipping = true;
        m_partial = std::string();
        return;
    }
    m_partial.append(piece);
}

bool LineSplitter::finish(std::string_view piece, const LineHandler& handle) {
    if (m_partial.empty() && !m_skipping && piece.size() <= m_longestLine) {
        return piece.empty() || handle(piece);
    }
    keep(piece);
    // Taken out rather than cleared, so that a huge line's memory is given back.
    const bool skipped = std::exchange(m_skipping, false);
    const std::string line = std::exchange(m_partial, std::string());
    return skipped || line.empty() || handle(line);
}

} // namespace nightjar
