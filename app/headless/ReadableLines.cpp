// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/ReadableLines.h"

#include "app/headless/ReadableText.h"

#include <chrono>
#include <utility>

namespace nightjar::headless {

ReadableLines::ReadableLines(LineSink& output, Scheduler& scheduler, std::function<void()> roomAgain)
    : m_output(output), m_scheduler(scheduler), m_roomAgain(std::move(roomAgain)) {}

bool ReadableLines::mayPrint() {
    if (m_output.isFull() || m_printedThisSecond >= linesPerSecond)
        return false;
    ++m_printedThisSecond;
    if (!m_second)
        m_second = m_scheduler.after(std::chrono::seconds(1), [this] { beginNextSecond(); });
    return true;
}

void ReadableLines::print(std::string_view line) {
    std::string text = localTime(m_scheduler.now());
    text.append("  ").append(line);
    m_output.send(text);
}

void ReadableLines::printOrCount(std::string_view line) {
    if (mayPrint())
        print(line);
    else
        ++m_leftOut;
}

void ReadableLines::tellLeftOut() {
    if (m_leftOut > 0 && mayPrint()) {
        print("(" + std::to_string(std::exchange(m_leftOut, 0)) + " more lines were left out)");
    }
}

void ReadableLines::beginNextSecond() {
    m_second.cancel();
    m_printedThisSecond = 0;
    m_roomAgain();
}

} // namespace nightjar::headless
