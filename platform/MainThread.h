// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

namespace nightjar {

/// The way home: what other threads found out is told on the main thread.
class MainThread {
public:
    virtual ~MainThread() = default;
    /// Any thread. Jobs run on the main thread in the order in which they were posted, later, never inside
    /// this call. Jobs that are still waiting when the object goes are destroyed without being run.
    virtual void post(std::move_only_function<void()> job) = 0;
};

} // namespace nightjar
