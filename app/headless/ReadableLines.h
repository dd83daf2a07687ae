// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/LineSink.h"
#include "platform/Scheduler.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace nightjar::headless {

/// Lines for people, each with the time of day, and how many of them a person can take: beyond a number of
/// lines a second the caller is asked to wait, or lines are only counted. Main thread.
class ReadableLines {
public:
    static constexpr std::size_t linesPerSecond = 40;

    /// `roomAgain` is called when a second is over in which lines were printed.
    ReadableLines(LineSink& output, Scheduler& scheduler, std::function<void()> roomAgain);

    /// Whether a line that can wait may be printed now, which is then counted as printed.
    [[nodiscard]] bool mayPrint();
    /// For what must be told however much else there is, and after `mayPrint`.
    void print(std::string_view line);
    void printOrCount(std::string_view line);
    /// Says how many lines were only counted, once there is room for it.
    void tellLeftOut();

private:
    void beginNextSecond();

    LineSink& m_output;
    Scheduler& m_scheduler;
    std::function<void()> m_roomAgain;
    std::size_t m_printedThisSecond = 0;
    std::size_t m_leftOut = 0;
    Timer m_second; ///< runs while the lines of the present second are counted
};

} // namespace nightjar::headless
