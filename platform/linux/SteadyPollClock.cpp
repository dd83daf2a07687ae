// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/SteadyPollClock.h"

#include <algorithm>
#include <limits>

namespace nightjar {

PollClock::TimePoint SteadyPollClock::now() const {
    return std::chrono::steady_clock::now();
}

int SteadyPollClock::pollTimeout(std::optional<TimePoint> deadline) const {
    if (!deadline)
        return -1;
    // Rounded up: waking a fraction of a millisecond early would spin until the deadline.
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*deadline - now()).count();
    return static_cast<int>(std::clamp<decltype(wait)>(wait, 0, std::numeric_limits<int>::max()));
}

PollClock::Registration SteadyPollClock::onJump(std::function<void()>) {
    return {};
}

} // namespace nightjar
