// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Scheduler.h"
#include "platform/linux/BackgroundThread.h"
#include "platform/linux/SoundOutput.h"

#include <memory>

namespace nightjar {

/// Plays sounds on a thread of its own, which the first one starts, because a sound server can keep its
/// callers waiting. A sound that waits already is not added again. The hardware is used directly only where
/// there is no way to a sound server. Main thread.
class SoundPlayer {
public:
    /// After a failure it stays quiet for this long.
    static constexpr std::chrono::seconds quietTime{30};

    SoundPlayer(const Scheduler& scheduler, std::unique_ptr<SoundOutput> output);
    ~SoundPlayer();
    SoundPlayer(const SoundPlayer&) = delete;
    SoundPlayer& operator=(const SoundPlayer&) = delete;

    void play(const Sound& sound);

private:
    class Queue;

    const Scheduler& m_scheduler;
    std::shared_ptr<Queue> m_queue; ///< with the thread, which may outlive us
    bool m_isRunning = false;
    BackgroundThread m_thread;
};

} // namespace nightjar
