// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/WakeMonitor.h"

#include <utility>

namespace nightjar {

/// A computer that sleeps when it is told to. One thread.
class FakeWakeMonitor final : public WakeMonitor {
public:
    void setListener(std::function<void()> onWake) override { m_onWake = std::move(onWake); }
    void check() override {
        if (std::exchange(m_hasSlept, false) && m_onWake)
            m_onWake();
    }

    /// The system tells of the wake.
    void wake() {
        m_hasSlept = true;
        check();
    }
    /// The computer has slept, and the system's notice of the wake is still on its way.
    void wakeUnnoticed() { m_hasSlept = true; }

private:
    std::function<void()> m_onWake;
    bool m_hasSlept = false;
};

} // namespace nightjar
