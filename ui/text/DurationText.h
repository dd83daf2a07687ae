// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace nightjar {

/// A length of time in words: "1 minute", "1 hour 30 minutes". At most two units; the rest is dropped.
[[nodiscard]] QString durationText(double seconds);

} // namespace nightjar
