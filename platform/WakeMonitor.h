// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

namespace nightjar {

/// Tells when the computer has woken from sleep. Main thread.
class WakeMonitor {
public:
    virtual ~WakeMonitor() = default;
    /// Replaces the listener; called once for each wake, by the system's notice or within `check`.
    virtual void setListener(std::function<void()> onWake) = 0;
    /// Looks whether the computer has slept since the last look and tells of it at once: a timer can fire
    /// before the system's notice of the wake arrives.
    virtual void check() = 0;
};

} // namespace nightjar
