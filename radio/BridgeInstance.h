// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/PollClock.h"
#include "radio/ChildProcess.h"
#include "radio/LineSplitter.h"
#include "radio/RadioLink.h"
#include "radio/WriteQueue.h"

#include <memory>
#include <optional>

namespace nightjar {

/// One launched bridge with all that belongs to it, present or absent as a whole. Radio thread.
struct BridgeInstance {
    ChildProcess child;
    std::shared_ptr<RadioLink::Listener> listener;
    LineSplitter lines;
    WriteQueue writes;
    bool established = false; ///< `connect` was answered as it should be
    /// While a `disconnect` request is under way: when the bridge is stopped whatever it does.
    std::optional<PollClock::TimePoint> endBy{};
    /// Once the exit has been noticed: how much of what the bridge wrote before is still to be read. A
    /// process that the bridge left behind may keep its output open, so the end of the output cannot be
    /// waited for.
    std::optional<std::size_t> unreadAfterExit{};
};

} // namespace nightjar
