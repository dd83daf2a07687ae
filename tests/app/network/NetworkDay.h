// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

/// A random day of a few devices in a local network: what happened, and which alerts were posted.
namespace nightjar::testing {

/// Milliseconds of monotonic time since the beginning.
using Moment = std::int64_t;

/// A bit for each device and interface.
using Announced = std::uint32_t;

enum class Happening {
    told, ///< a complete set, of type `value`
    start,
    stop,
    track,
    stopTracking,
    forget,
    alertOn,
    alertOff,
    delay, ///< `value` in seconds
    waiting,
    ready,
    clockSet ///< moved on by `value` seconds
};

struct Event {
    Moment at = 0;
    Happening what{};
    std::size_t device = 0;
    int value = 0;
    Announced set = 0;
};

/// What was posted, or should have been.
struct Alert {
    Moment at = 0;
    std::size_t device = 0;
    bool isReturn = false;

    auto operator<=>(const Alert&) const = default;
};

struct NetworkDay {
    static constexpr std::size_t devices = 4;
    static constexpr std::size_t types = 3;
    static constexpr std::size_t interfaces = 2;
    using Statuses = std::array<std::string, devices>; ///< empty: not known

    [[nodiscard]] static Announced bit(std::size_t device, std::size_t interface) {
        return 1U << (device * interfaces + interface);
    }
    [[nodiscard]] static Announced anyOf(std::size_t device) { return bit(device, 0) | bit(device, 1); }

    std::vector<Event> events;
    std::vector<Alert> alerts;
    Statuses atTheEnd;
    Moment end = 0;
};

/// Lives through the day of that number.
[[nodiscard]] NetworkDay liveThroughNetworkDay(std::uint32_t seed);

/// What a day should bring, by rules of their own: each device for itself, from the sets that were told.
struct Verdict {
    std::vector<Alert> alerts; ///< sorted
    NetworkDay::Statuses atTheEnd;
};
[[nodiscard]] Verdict judge(const NetworkDay& day);

/// The alerts of devices that had been announced within the shortest delay that was ever set for them, or
/// that nobody wished to watch: whatever the finer rules are, there must be none.
[[nodiscard]] std::vector<Alert> falseAlarms(const NetworkDay& day);

} // namespace nightjar::testing
