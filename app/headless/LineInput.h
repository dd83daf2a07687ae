// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/LineBuffer.h"

#include <QObject>
#include <QSocketNotifier>

#include <functional>
#include <string_view>

namespace nightjar::headless {

/// Lines from a descriptor of any kind, as they arrive. Main thread. Reads only when told that something is
/// there, so the descriptor's blocking mode is left alone.
class LineInput : public QObject {
    Q_OBJECT
public:
    static constexpr std::size_t longestLine = std::size_t{1} << 20;

    struct Listener {
        std::function<void(std::string_view line)> onLine;
        std::function<void()> onTooLongLine;
        std::function<void()> onEnd; ///< at most once, after the last line
    };

    LineInput(int descriptor, Listener listener);

    void start();
    /// While paused nothing is read and no line is told; may be called from within the listener.
    void setPaused(bool paused);

private:
    void read();
    void tellLines();

    int m_descriptor;
    Listener m_listener;
    LineBuffer m_lines{longestLine};
    bool m_started = false;
    bool m_paused = false;
    bool m_telling = false;
    bool m_ended = false;
    bool m_toldEnd = false;
    QSocketNotifier m_readable{QSocketNotifier::Read};
};

} // namespace nightjar::headless
