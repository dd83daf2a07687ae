// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/LineSink.h"
#include "app/mesh/NightjarModel.h"
#include "platform/NotificationCenter.h"
#include "platform/Scheduler.h"

#include <QObject>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace nightjar::headless {

/// The mesh side as lines for people: one per change and alert, with the time of day. Main thread. Alerts are
/// always printed, and so is what somebody wrote. Under a flood everything else is held to a number of lines
/// a second: states then come with their latest text, and nodes beyond the number are only counted.
class ReadableReport : public QObject {
    Q_OBJECT
public:
    static constexpr std::size_t linesPerSecond = 40;

    ReadableReport(NightjarModel& model, LineSink& output, Scheduler& scheduler);

    /// Prints the present state, and from now on each change, once per turn of the event loop.
    void start();
    void tell(const Notification& notification);
    /// Prints what has changed as far as the reader takes it; to be called when it has caught up.
    void flush();

private:
    /// A status line of the model.
    struct State {
        std::string label;
        std::function<std::string()> text; ///< empty: nothing to say
        std::string printed{};
    };

    template <class Getter, class Signal>
    void watchState(std::string_view label, Getter getter, Signal signal);
    void scheduleFlush();
    void skipStoredMessages();
    void printStates();
    void printNodes();
    void printMessages();
    [[nodiscard]] std::string messageLine(const MeshMessage& message) const;
    [[nodiscard]] bool mayPrint();
    void printOrCount(const std::string& line);
    void print(std::string_view line);
    void beginNextSecond();

    NightjarModel& m_model;
    LineSink& m_output;
    Scheduler& m_scheduler;
    std::vector<State> m_states;
    std::unordered_set<std::uint32_t> m_seenNodes;
    std::size_t m_seenMessages = 0;
    std::size_t m_printedThisSecond = 0;
    std::size_t m_leftOut = 0;
    bool m_scheduled = false;
    bool m_nodesChanged = false;
    Timer m_second; ///< runs while the lines of the present second are counted
};

} // namespace nightjar::headless
