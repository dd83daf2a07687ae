// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/base/Date.h"

#include <cmath>
#include <cstdio>

namespace nightjar {
namespace {

using namespace std::chrono;

bool readDigits(std::string_view text, std::size_t at, std::size_t count, int& value) {
    value = 0;
    for (std::size_t i = at; i < at + count; ++i) {
        if (text[i] < '0' || text[i] > '9') return false;
        value = value * 10 + (text[i] - '0');
    }
    return true;
}

/// Minutes east of UTC that the zone part after the seconds names.
std::optional<int> readZone(std::string_view zone) {
    if (zone == "Z") return 0;
    const bool withColon = zone.size() == 6 && zone[3] == ':';
    if (!withColon && zone.size() != 5) return std::nullopt;
    if (zone[0] != '+' && zone[0] != '-') return std::nullopt;
    int hour = 0;
    int minute = 0;
    if (!readDigits(zone, 1, 2, hour) || !readDigits(zone, withColon ? 4 : 3, 2, minute)) return std::nullopt;
    if (hour > 23 || minute > 59) return std::nullopt;
    return (hour * 60 + minute) * (zone[0] == '-' ? -1 : 1);
}

} // namespace

std::optional<std::string> iso8601Text(Date date) {
    const double whole = std::floor(unixSeconds(date));
    constexpr double firstSecond = -62'135'596'800.0; // 0001-01-01T00:00:00Z
    constexpr double lastSecond = 253'402'300'799.0;  // 9999-12-31T23:59:59Z
    if (!(whole >= firstSecond && whole <= lastSecond)) return std::nullopt;

    const sys_seconds time{seconds{static_cast<std::int64_t>(whole)}};
    const auto day = floor<days>(time);
    const year_month_day calendar{day};
    const hh_mm_ss clock{time - day};
    char text[32];
    const int length = std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ",
                                     static_cast<int>(calendar.year()), static_cast<unsigned>(calendar.month()),
                                     static_cast<unsigned>(calendar.day()), static_cast<int>(clock.hours().count()),
                                     static_cast<int>(clock.minutes().count()),
                                     static_cast<int>(clock.seconds().count()));
    return std::string(text, static_cast<std::size_t>(length));
}

std::optional<Date> dateFromIso8601(std::string_view text) {
    constexpr std::size_t zoneAt = 19;
    if (text.size() <= zoneAt) return std::nullopt;
    if (text[4] != '-' || text[7] != '-' || text[10] != 'T' || text[13] != ':' || text[16] != ':') return std::nullopt;

    int y = 0, mo = 0, d = 0, h = 0, mi = 0, s = 0;
    const bool digits = readDigits(text, 0, 4, y) && readDigits(text, 5, 2, mo) && readDigits(text, 8, 2, d) &&
                        readDigits(text, 11, 2, h) && readDigits(text, 14, 2, mi) && readDigits(text, 17, 2, s);
    const auto zone = readZone(text.substr(zoneAt));
    if (!digits || !zone || h > 23 || mi > 59 || s > 59) return std::nullopt;

    const year_month_day calendar{year{y}, month{static_cast<unsigned>(mo)}, day{static_cast<unsigned>(d)}};
    if (!calendar.ok()) return std::nullopt;
    const sys_seconds time = sys_days{calendar} + hours{h} + minutes{mi} + seconds{s} - minutes{*zone};
    return dateFromUnixSeconds(static_cast<double>(time.time_since_epoch().count()));
}

} // namespace nightjar
