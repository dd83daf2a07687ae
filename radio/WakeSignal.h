// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "radio/FileDescriptor.h"

namespace nightjar {

/// Ends another thread's wait in poll(2).
class WakeSignal {
public:
    /// Throws std::system_error when the process has no descriptor left.
    WakeSignal();
    /// Any thread.
    void ring() const;
    /// The descriptor that becomes readable when the signal rings.
    [[nodiscard]] int descriptor() const { return m_event.get(); }
    void clear() const;

private:
    FileDescriptor m_event;
};

} // namespace nightjar
