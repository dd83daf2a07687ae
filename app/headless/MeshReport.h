// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/ReadableLines.h"
#include "app/headless/StateLines.h"
#include "app/mesh/NightjarModel.h"
#include "platform/Scheduler.h"

#include <QObject>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <unordered_set>

namespace nightjar::headless {

/// The mesh side as lines for people: its states, each node once, and every message. Main thread.
class MeshReport : public QObject {
    Q_OBJECT
public:
    /// `changed` is called after each change that `print` may have something to say about.
    MeshReport(NightjarModel& model, Scheduler& scheduler, std::function<void()> changed);

    void print(ReadableLines& lines);

private:
    template <class Getter, class Signal>
    void watchState(std::string label, Getter getter, Signal signal);
    void skipStoredMessages();
    void printNodes(ReadableLines& lines);
    void printMessages(ReadableLines& lines);
    [[nodiscard]] std::string messageLine(const MeshMessage& message) const;

    NightjarModel& m_model;
    Scheduler& m_scheduler;
    std::function<void()> m_changed;
    StateLines m_states;
    std::unordered_set<std::uint32_t> m_seenNodes;
    std::size_t m_seenMessages = 0;
    bool m_nodesChanged = true;
};

} // namespace nightjar::headless
