// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/BackgroundThread.h"

#include <atomic>
#include <chrono>
#include <system_error>
#include <utility>

namespace nightjar {
namespace {

constexpr std::chrono::seconds patience{1};
std::atomic<bool> leftBehind = false;

} // namespace

BackgroundThread::~BackgroundThread() {
    finish();
}

bool BackgroundThread::wasOneLeftBehind() {
    return leftBehind;
}

bool BackgroundThread::start(std::function<void()> work) {
    finish();
    m_progress = std::make_shared<Progress>();
    try {
        m_thread = std::thread([work = std::move(work), progress = m_progress] {
            work();
            const std::scoped_lock lock(progress->mutex);
            progress->hasEnded = true;
            progress->ended.notify_all();
        });
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

void BackgroundThread::finish() {
    if (!m_thread.joinable())
        return;
    std::unique_lock lock(m_progress->mutex);
    const bool ended = m_progress->ended.wait_for(lock, patience, [this] { return m_progress->hasEnded; });
    lock.unlock();
    if (ended)
        return m_thread.join();
    leftBehind = true;
    m_thread.detach();
}

} // namespace nightjar
