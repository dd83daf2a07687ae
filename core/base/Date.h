// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace nightjar {

/// The clock whose epoch is 2001-01-01 00:00:00 UTC. It has no `now()`: the time of day is always given in.
struct ReferenceDateClock {
    using duration = std::chrono::duration<double>;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<ReferenceDateClock, duration>;
    static constexpr bool is_steady = false;
};

/// A wall-clock date, kept as the double count of seconds since 2001-01-01 00:00:00 UTC, so that what is read
/// from a file is written back the same.
using Date = ReferenceDateClock::time_point;
using Seconds = std::chrono::duration<double>;

/// Seconds between 1970-01-01 and 2001-01-01, both 00:00:00 UTC (31 years, 8 of them leap years).
inline constexpr double secondsFrom1970To2001 = 978'307'200.0;

/// 0001-01-01 00:00:00 UTC, the earliest date that has a name.
inline constexpr Date distantPast{Seconds{-63'113'904'000.0}};

[[nodiscard]] constexpr Date dateFromUnixSeconds(double seconds) {
    return Date{Seconds{seconds - secondsFrom1970To2001}};
}
[[nodiscard]] constexpr double unixSeconds(Date date) {
    return date.time_since_epoch().count() + secondsFrom1970To2001;
}

/// "2025-05-01T12:34:56Z": UTC, whole seconds (fractions are cut off). Absent for a date outside the years 1
/// to 9999.
[[nodiscard]] std::optional<std::string> iso8601Text(Date date);

/// The length of that text.
inline constexpr std::size_t iso8601Length = 20;
/// `iso8601Text` without an allocation; false, and nothing written, where that is absent.
[[nodiscard]] bool writeIso8601(Date date, std::span<char, iso8601Length> text);

/// Reads exactly "YYYY-MM-DDThh:mm:ss" followed by "Z", "+hh:mm" or "+hhmm", of the years 1 to 9999 in UTC;
/// no fractions, no other form.
[[nodiscard]] std::optional<Date> dateFromIso8601(std::string_view text);

} // namespace nightjar
