// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/network/NetworkTexts.h"

#include <algorithm>

namespace nightjar::NetworkTexts {

std::string available(std::size_t count) {
    return count == 0 ? "Listening for Bonjour services…" : std::to_string(count) + " devices available";
}

std::string saveFailed(std::string_view reason) {
    return "Known Local Network devices could not be saved: " + std::string(reason);
}

std::string durationText(double seconds) {
    constexpr double minute = 60;
    constexpr double hour = 60 * minute;
    constexpr double day = 24 * hour;
    if (seconds >= day)
        return "1 day";
    const auto inUnits = [seconds](double unit, const char* name) {
        // Whatever was set: a number that fits.
        const auto count = static_cast<long long>(std::max(seconds, -1e15) / unit);
        return std::to_string(count) + ' ' + name + (seconds >= 2 * unit ? "s" : "");
    };
    return seconds >= hour ? inUnits(hour, "hour") : inUnits(minute, "minute");
}

} // namespace nightjar::NetworkTexts
