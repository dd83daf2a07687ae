// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace nightjar {

/// Cuts a stream of bytes into lines at line feeds. Empty lines are passed over.
class LineSplitter {
public:
    /// Takes one line without its line feed; false ends the work, and the rest of the bytes is dropped.
    using LineHandler = std::function<bool(std::string_view)>;

    /// A line of more than `longestLine` bytes is passed over up to its line feed, to protect the machine.
    explicit LineSplitter(std::size_t longestLine) : m_longestLine(longestLine) {}

    void feed(std::string_view bytes, const LineHandler& handle);
    /// The bytes of an unfinished line that are kept.
    [[nodiscard]] std::size_t keptBytes() const { return m_partial.size(); }

private:
    void keep(std::string_view piece);
    bool finish(std::string_view piece, const LineHandler& handle);

    std::size_t m_longestLine;
    std::string m_partial;
    bool m_skipping = false;
};

} // namespace nightjar
