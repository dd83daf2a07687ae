// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Date.h"

#include <chrono>

namespace nightjar::bridge {

/// One instant on both clocks. It is handed to whatever needs the time, so that a test can make it up.
struct Moment {
    using TimePoint = std::chrono::steady_clock::time_point;

    TimePoint monotonic;
    Date date; ///< the time of day
};

} // namespace nightjar::bridge
