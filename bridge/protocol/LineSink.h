// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace nightjar::bridge {

/// Takes the lines for the client. Never blocks.
class LineSink {
public:
    virtual ~LineSink() = default;
    /// One line with its line feed.
    virtual void writeLine(std::string_view line) = 0;
    /// False when so much waits that no more should be made; what is written nevertheless is kept.
    [[nodiscard]] virtual bool hasRoom() const = 0;
};

} // namespace nightjar::bridge
