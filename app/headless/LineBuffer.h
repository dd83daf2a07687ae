// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace nightjar::headless {

/// Cuts a stream of bytes into lines. A line longer than the limit is told once, without its text, and
/// skipped.
class LineBuffer {
public:
    explicit LineBuffer(std::size_t longestLine) : m_longestLine(longestLine) {}

    struct Line {
        std::string text; ///< without its line feed; empty when the line was too long
        bool tooLong = false;
    };

    void append(std::string_view bytes);
    /// The stream has ended: what is left without a line feed is a line too.
    void end();
    [[nodiscard]] std::optional<Line> next();

private:
    std::size_t m_longestLine;
    std::string m_bytes;
    std::size_t m_start = 0;    ///< of the next line
    std::size_t m_searched = 0; ///< no line feed between `m_start` and here
    bool m_skipping = false;    ///< the rest of a line that was too long
};

} // namespace nightjar::headless
