// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/base/Date.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace nightjar {
namespace {

using namespace std::chrono;

// What can be read can also be written.
constexpr double firstSecond = -62'135'596'800.0; // 0001-01-01T00:00:00Z
constexpr double lastSecond = 253'402'300'799.0;  // 9999-12-31T23:59:59Z

/// The number of the digits at `at`; negative where one of them is no digit.
template <int count>
int readDigits(std::string_view text, std::size_t at) {
    int value = 0;
    int wrong = 0;
    for (std::size_t i = at; i < at + count; ++i) {
        const int digit = text[i] - '0';
        wrong |= digit | (9 - digit);
        value = value * 10 + digit;
    }
    return wrong < 0 ? -1 : value;
}

template <int count>
void writeDigits(std::span<char> text, std::size_t at, unsigned value) {
    for (std::size_t i = at + count; i-- > at; value /= 10)
        text[i] = static_cast<char>('0' + value % 10);
}

/// Minutes east of UTC that the zone part after the seconds names.
std::optional<int> readZone(std::string_view zone) {
    if (zone == "Z")
        return 0;
    const bool withColon = zone.size() == 6 && zone[3] == ':';
    if (!withColon && zone.size() != 5)
        return std::nullopt;
    if (zone[0] != '+' && zone[0] != '-')
        return std::nullopt;
    const int hour = readDigits<2>(zone, 1);
    const int minute = readDigits<2>(zone, withColon ? 4 : 3);
    if (hour < 0 || hour > 23 || minute < 0 || minute > 59)
        return std::nullopt;
    return (hour * 60 + minute) * (zone[0] == '-' ? -1 : 1);
}

} // namespace

bool writeIso8601(Date date, std::span<char, iso8601Length> text) {
    const double whole = std::floor(unixSeconds(date));
    if (!(whole >= firstSecond && whole <= lastSecond))
        return false;

    const sys_seconds time{seconds{static_cast<std::int64_t>(whole)}};
    const auto day = floor<days>(time);
    const year_month_day calendar{day};
    const auto second = static_cast<unsigned>((time - day).count());
    std::ranges::copy(std::string_view("yyyy-mm-ddThh:mm:ssZ"), text.begin());
    writeDigits<4>(text, 0, static_cast<unsigned>(static_cast<int>(calendar.year())));
    writeDigits<2>(text, 5, static_cast<unsigned>(calendar.month()));
    writeDigits<2>(text, 8, static_cast<unsigned>(calendar.day()));
    writeDigits<2>(text, 11, second / 3600);
    writeDigits<2>(text, 14, second / 60 % 60);
    writeDigits<2>(text, 17, second % 60);
    return true;
}

std::optional<std::string> iso8601Text(Date date) {
    std::array<char, iso8601Length> text;
    if (!writeIso8601(date, text))
        return std::nullopt;
    return std::string(text.data(), text.size());
}

std::optional<Date> dateFromIso8601(std::string_view text) {
    constexpr std::size_t zoneAt = 19;
    if (text.size() <= zoneAt)
        return std::nullopt;
    if (text[4] != '-' || text[7] != '-' || text[10] != 'T' || text[13] != ':' || text[16] != ':')
        return std::nullopt;

    const int years = readDigits<4>(text, 0);
    const int months = readDigits<2>(text, 5);
    const int day = readDigits<2>(text, 8);
    const int hour = readDigits<2>(text, 11);
    const int minute = readDigits<2>(text, 14);
    const int second = readDigits<2>(text, 17);
    if ((years | months | day | hour | minute | second) < 0)
        return std::nullopt;
    const auto zone = readZone(text.substr(zoneAt));
    if (!zone || hour > 23 || minute > 59 || second > 59)
        return std::nullopt;

    const year_month_day calendar{year{years}, month{static_cast<unsigned>(months)},
                                  std::chrono::day{static_cast<unsigned>(day)}};
    if (!calendar.ok())
        return std::nullopt;
    const sys_seconds time =
        sys_days{calendar} + hours{hour} + minutes{minute} + seconds{second} - minutes{*zone};
    const auto unix = static_cast<double>(time.time_since_epoch().count());
    if (unix < firstSecond || unix > lastSecond)
        return std::nullopt;
    return dateFromUnixSeconds(unix);
}

} // namespace nightjar
