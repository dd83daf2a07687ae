// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridge/protocol/LineSink.h"
#include "bridge/protocol/Moment.h"

#include <optional>
#include <string>

namespace nightjar::bridge {

/// Writes to a descriptor without ever blocking: what the reader does not take yet waits here.
class OutputQueue final : public LineSink {
public:
    /// The descriptor is set to non-blocking where that concerns nobody else (pipes and sockets).
    explicit OutputQueue(int descriptor);

    void writeLine(std::string_view line) override;
    [[nodiscard]] bool hasRoom() const override;
    void writeRaw(std::string_view bytes);
    /// The next line's second half and all that follows waits until the first half has been out for that
    /// long.
    void cutNextLine(Seconds wait) { m_cutNext = wait; }
    /// Closes the descriptor as soon as everything is out.
    void closeWhenDone() { m_closing = true; }

    /// Writes what goes. False when the reader is gone.
    [[nodiscard]] bool flush(Moment::TimePoint now);

    [[nodiscard]] int descriptor() const { return m_descriptor; } ///< -1 once closed
    /// Whether bytes wait for the reader.
    [[nodiscard]] bool waitsForReader() const;
    [[nodiscard]] bool isEmpty() const { return m_written == m_bytes.size(); }
    /// When a held-back half may go.
    [[nodiscard]] std::optional<Moment::TimePoint> due() const { return m_heldUntil; }

private:
    /// A place in the waiting bytes where the writing pauses.
    struct Cut {
        std::size_t at;
        Seconds wait;
    };

    [[nodiscard]] std::size_t limit() const { return m_cut ? m_cut->at : m_bytes.size(); }
    [[nodiscard]] bool writeUpToLimit();
    void dropWritten();

    int m_descriptor;
    std::string m_bytes;
    std::size_t m_written = 0;
    std::optional<Seconds> m_cutNext;
    std::optional<Cut> m_cut;
    std::optional<Moment::TimePoint> m_heldUntil;
    bool m_closing = false;
};

} // namespace nightjar::bridge
