// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Uuid.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <system_error>

namespace nightjar {

/// Request lines on their way into a pipe that takes them as fast as the bridge reads.
class WriteQueue {
public:
    /// A line that could not be written; it is out of the queue.
    struct Failure {
        Uuid request;
        std::error_code error;
    };

    explicit WriteQueue(std::size_t limit) : m_limit(limit) {}

    /// False when the waiting lines would exceed the limit.
    [[nodiscard]] bool add(const Uuid& request, std::string line);
    /// Takes a line back unless its first bytes are out already: half a line would spoil the next one.
    void withdraw(const Uuid& request);
    /// Writes what the pipe takes now. After a failure there may be more to write.
    [[nodiscard]] std::optional<Failure> flush(int descriptor);
    [[nodiscard]] bool isEmpty() const { return m_lines.empty(); }
    [[nodiscard]] std::size_t waitingBytes() const { return m_bytes - m_written; }

private:
    struct Line {
        Uuid request;
        std::string text;
    };
    void dropFirst();

    std::size_t m_limit;
    std::deque<Line> m_lines;
    std::size_t m_bytes = 0;   ///< of all lines
    std::size_t m_written = 0; ///< of the first line
};

} // namespace nightjar
