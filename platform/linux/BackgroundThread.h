// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace nightjar {

/// A thread for work that waits for others and may do so for ever. Its owner does not: `finish`, and with it
/// the destructor, waits a second for the work to end and then leaves the thread behind, so the work must own
/// all that it touches. One thread.
class BackgroundThread {
public:
    BackgroundThread() = default;
    ~BackgroundThread();
    BackgroundThread(const BackgroundThread&) = delete;
    BackgroundThread& operator=(const BackgroundThread&) = delete;

    /// After the work of before has been finished. False when there is no thread to be had.
    [[nodiscard]] bool start(std::function<void()> work);
    void finish();

    /// Whether any thread was left behind, which would keep the process from ending in the usual way.
    [[nodiscard]] static bool wasOneLeftBehind();

private:
    struct Progress {
        std::mutex mutex;
        std::condition_variable ended;
        bool hasEnded = false;
    };

    std::shared_ptr<Progress> m_progress;
    std::thread m_thread;
};

} // namespace nightjar
