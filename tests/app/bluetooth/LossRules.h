// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/app/bluetooth/LossScenario.h"

#include <optional>
#include <string>
#include <vector>

namespace nightjar::testing {

/// The alerts that a day should bring, found by looking back from each moment at what had happened until
/// then; by time, then device.
[[nodiscard]] std::vector<Alert> alertsDue(const Day& day);

/// What can be said without any of the finer rules: a watched device that falls silent, while nobody touches
/// anything, is told of once and in time, and so is its return.
struct PlainSilences {
    int count = 0;
    std::optional<std::string> fault{};
};
[[nodiscard]] PlainSilences judgePlainSilences(const Day& day);

} // namespace nightjar::testing
