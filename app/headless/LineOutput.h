// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/LineSink.h"

#include <QObject>
#include <QSocketNotifier>

#include <chrono>
#include <cstddef>
#include <string>

namespace nightjar::headless {

/// Lines to a descriptor of any kind (pipe, terminal, file, socket) without ever waiting for its reader: what
/// the reader has not taken yet is kept. The descriptor's own blocking mode, which other processes may share,
/// is left alone.
class LineOutput : public QObject, public LineSink {
    Q_OBJECT
public:
    static constexpr std::size_t defaultMark = std::size_t{256} << 10;

    /// Above `mark` waiting bytes the output is full.
    explicit LineOutput(int descriptor, std::size_t mark = defaultMark);
    ~LineOutput() override;

    void send(std::string_view line) override;
    [[nodiscard]] bool isFull() const override { return waiting() > m_mark; }
    /// Hands over what the reader takes at once. Done by itself once per turn of the event loop.
    void writeOut();
    /// Waits for the reader as long as it goes on reading: at most `patience` without progress.
    void finish(std::chrono::milliseconds patience);
    [[nodiscard]] bool isLost() const { return m_lost; }

Q_SIGNALS:
    /// The reader has caught up after the output had been full.
    void drained();
    /// Nothing can be written any more; later lines are dropped. The sentence is empty when the reader simply
    /// left.
    void lost(const QString& sentence);

private:
    enum class Kind { plain, nonBlocking, socket, careful };

    [[nodiscard]] std::size_t waiting() const { return m_bytes.size() - m_written; }
    void writeWaiting();
    [[nodiscard]] long writeSome();
    void forgetWritten();
    void fail(int error);

    int m_descriptor;
    bool m_owned = false;
    Kind m_kind = Kind::careful;
    std::size_t m_mark;
    std::string m_bytes;
    std::size_t m_written = 0; ///< of the front of `m_bytes`
    bool m_wasFull = false;
    bool m_lost = false;
    bool m_scheduled = false;
    QSocketNotifier m_writable{QSocketNotifier::Write};
};

} // namespace nightjar::headless
