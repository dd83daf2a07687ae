// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/simulated/FakeTextServices.h"

#include <algorithm>

namespace nightjar {

namespace {

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

char folded(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

/// A run of digits as the number of its digits and the digits themselves: the longer number is the greater.
void appendNumber(std::string& key, std::string_view digits) {
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    auto count = digits.size();
    // Lengths of 255 and more take further bytes, so that they too compare by value.
    key.push_back('0');
    for (; count >= 255; count -= 255)
        key.push_back('\xFF');
    key.push_back(static_cast<char>(count));
    key.append(digits);
}

} // namespace

std::string FakeTextServices::collationKey(std::string_view text) const {
    std::string key;
    for (std::size_t at = 0; at < text.size();) {
        if (!isDigit(text[at])) {
            key.push_back(folded(text[at++]));
            continue;
        }
        const auto begin = text.begin() + static_cast<std::ptrdiff_t>(at);
        const auto end = std::find_if_not(begin, text.end(), isDigit);
        appendNumber(key, {begin, end});
        at += static_cast<std::size_t>(end - begin);
    }
    key.push_back('\0');
    return key.append(text);
}

std::string FakeTextServices::shortTimeOfDay(Date date) const {
    // "2025-05-01T12:34:56Z"
    return iso8601Text(date).value_or(std::string(iso8601Length, '-')).substr(11, 5);
}

std::string FakeTextServices::relativeTime(Date date, Date now) const {
    return std::to_string(static_cast<long long>((now - date).count())) + " s ago";
}

} // namespace nightjar
