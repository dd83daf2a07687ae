// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Date.h"

#include <string>
#include <string_view>

namespace nightjar {

/// Text in the user's language. Main thread.
class TextServices {
public:
    virtual ~TextServices() = default;
    /// Bytes whose plain order is the order in which a file browser lists names: letter case and accents
    /// matter only between otherwise equal names, runs of digits count by their value.
    [[nodiscard]] virtual std::string collationKey(std::string_view text) const = 0;
    /// The local time of day, short and without a date, such as "14:05" or "2:05 PM".
    [[nodiscard]] virtual std::string shortTimeOfDay(Date date) const = 0;
    /// How long ago a date is, or how far off, in whole words and the largest whole unit: "5 minutes ago",
    /// "yesterday", "now".
    [[nodiscard]] virtual std::string relativeTime(Date date, Date now) const = 0;
};

} // namespace nightjar
