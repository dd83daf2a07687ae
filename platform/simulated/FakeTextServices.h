// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/TextServices.h"

namespace nightjar {

/// The same order of names on every machine: digits by their value, ASCII letters whatever their case, all
/// else by its bytes. Texts that differ in letter case or leading zeros alone follow each other by their
/// bytes. Times of day are those of UTC, as "14:05". Any thread.
class FakeTextServices final : public TextServices {
public:
    [[nodiscard]] std::string collationKey(std::string_view text) const override;
    [[nodiscard]] std::string shortTimeOfDay(Date date) const override;
    /// "90 s ago".
    [[nodiscard]] std::string relativeTime(Date date, Date now) const override;
};

} // namespace nightjar
