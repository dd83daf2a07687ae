// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/PollClock.h"

namespace nightjar {

/// The system's monotonic clock, which never jumps and stands still while the computer sleeps.
class SteadyPollClock final : public PollClock {
public:
    [[nodiscard]] TimePoint now() const override;
    [[nodiscard]] int pollTimeout(std::optional<TimePoint> deadline) const override;
    [[nodiscard]] Registration onJump(std::function<void()> wake) override;
};

} // namespace nightjar
