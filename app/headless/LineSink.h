// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace nightjar::headless {

/// Takes lines for whoever reads the headless program. Main thread; never blocks and never loses a line.
class LineSink {
public:
    virtual ~LineSink() = default;
    /// The line comes without its line feed.
    virtual void send(std::string_view line) = 0;
    /// Whether the reader is behind: what can wait should wait.
    [[nodiscard]] virtual bool isFull() const = 0;
};

} // namespace nightjar::headless
