// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

namespace nightjar::bridge {

/// Reads lines from a descriptor. A line longer than any request is dropped whole.
class LineReader {
public:
    explicit LineReader(int descriptor) : m_descriptor(descriptor) {}

    /// One read of what is there. False at the end of input.
    [[nodiscard]] bool fill();
    /// The next whole line without its line feed.
    [[nodiscard]] std::optional<std::string> next();
    [[nodiscard]] bool hasLine() const { return m_bytes.find('\n', m_searched) != std::string::npos; }

private:
    int m_descriptor;
    std::string m_bytes;
    std::size_t m_searched = 0; ///< no line feed stands before
    bool m_skipping = false;    ///< inside a line that is too long
};

} // namespace nightjar::bridge
