// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridge/simulated/Agenda.h"
#include "core/base/Date.h"

#include <algorithm>
#include <cmath>

namespace nightjar::bridge {

/// Between the time of the world, which may run faster, and real time. What happens carries the real date at
/// which it happens: a date ahead of the computer's clock would make a later, real fix look old.
struct WorldClock {
    double speed = 1;
    Date connectDate{};

    [[nodiscard]] Elapsed elapsed(double worldSeconds) const { return realSeconds(worldSeconds / speed); }
    [[nodiscard]] double worldSeconds(Elapsed elapsed) const { return Seconds(elapsed).count() * speed; }
    /// In whole seconds, as radios tell the time.
    [[nodiscard]] Date date(Elapsed elapsed) const {
        return Date{Seconds{std::floor((connectDate + Seconds(elapsed)).time_since_epoch().count())}};
    }
    [[nodiscard]] static Elapsed realSeconds(double seconds) {
        return Elapsed{std::llround(std::min(seconds, 1e9) * 1e9)};
    }
};

} // namespace nightjar::bridge
