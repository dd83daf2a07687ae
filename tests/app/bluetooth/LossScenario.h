// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Uuid.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

/// A random day with a few devices, in one place: what happened, and which alerts were posted.
namespace nightjar::testing {

/// Milliseconds of monotonic time since the beginning.
using Moment = std::int64_t;

enum class Happening {
    sent, ///< an advertisement; `value` is its reading
    startScanning,
    stopScanning,
    startFinding,
    stopFinding,
    radioOn,
    radioOff,
    wake,
    wakeUnnoticed,
    track,
    stopTracking,
    alertOn,
    alertOff,
    delay, ///< `value` in seconds
    rename,
    clockSet,
    transport
};

struct Event {
    Moment at = 0;
    Happening what{};
    std::size_t device = 0;
    int value = 0;
    std::string name{};
};

/// What was posted, or should have been.
struct Alert {
    Moment at = 0;
    std::size_t device = 0;
    std::string title{};

    bool operator==(const Alert&) const = default;
};

struct Day {
    static constexpr std::size_t devices = 4;

    std::vector<Event> events;
    std::vector<Alert> alerts;
    Moment end = 0;
    int textsExpected = 0; ///< alerts posted while messages were on and accepted
    int textsSent = 0;
};

/// Lives through the day of that number.
[[nodiscard]] Day liveThrough(std::uint32_t seed);

[[nodiscard]] std::string toText(const Event& event);
[[nodiscard]] std::string toText(const Alert& alert);

} // namespace nightjar::testing
