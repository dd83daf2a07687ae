// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/MainThread.h"
#include "platform/PollClock.h"
#include "radio/MeshRadioOptions.h"

#include <atomic>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace nightjar {

/// The one road from the radio thread to the main thread: jobs run there in the order in which they were
/// pushed, a slice at a time so that the window stays alive in a flood. It counts the bytes that wait, for
/// the radio thread to stop reading in time.
class MainThreadInbox : public std::enable_shared_from_this<MainThreadInbox> {
public:
    struct Job {
        std::move_only_function<void()> run;
        std::size_t bytes = 0; ///< what the job holds, roughly
    };

    /// `onRoom` is called on the main thread when reading may go on after the inbox was full.
    MainThreadInbox(MainThread& mainThread, const PollClock& clock, const MeshRadioOptions& options,
                    std::function<void()> onRoom);

    /// Radio thread. Takes all the jobs; one message to the main thread for however many.
    void push(std::vector<Job>& jobs);
    /// Any thread. From the high mark until the low mark is reached again.
    [[nodiscard]] bool isFull() const { return m_full.load(); }
    /// Main thread. Destroys what waits; afterwards nothing runs any more.
    void close();

private:
    struct Batch {
        std::vector<Job> jobs;
        std::size_t bytes = 0;
    };
    void wakeMainThread();
    void drain();
    [[nodiscard]] bool takeNextBatch();

    MainThread& m_mainThread;
    const PollClock& m_clock;
    std::function<void()> m_onRoom;
    std::size_t m_highBytes;
    std::size_t m_lowBytes;
    std::chrono::microseconds m_slice;

    std::mutex m_mutex; ///< guards the three below
    std::deque<Batch> m_batches;
    std::size_t m_bytes = 0;
    bool m_awake = false; ///< a drain is posted or at work
    std::atomic<bool> m_full = false;

    Batch m_current; ///< main thread
    std::size_t m_next = 0;
    bool m_closed = false;
};

} // namespace nightjar
