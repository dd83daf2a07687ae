// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/simulated/FakeScheduler.h"

#include <algorithm>
#include <utility>

namespace nightjar {

struct FakeScheduler::Entry {
    std::chrono::milliseconds due;
    std::chrono::milliseconds period; ///< zero: fires once
    std::uint64_t turn;               ///< order of arming
    std::function<void()> callback;
    bool done = false;
};

FakeScheduler::FakeScheduler(Date start) : m_now(start) {}

Timer FakeScheduler::after(std::chrono::milliseconds delay, std::function<void()> callback) {
    return arm(delay, std::chrono::milliseconds{0}, std::move(callback));
}

Timer FakeScheduler::every(std::chrono::milliseconds period, std::function<void()> callback) {
    // A period of nothing would never let time pass.
    const auto atLeastOne = std::max(period, std::chrono::milliseconds{1});
    return arm(atLeastOne, atLeastOne, std::move(callback));
}

Timer FakeScheduler::arm(std::chrono::milliseconds delay, std::chrono::milliseconds period,
                         std::function<void()> callback) {
    const auto due = m_elapsed + std::max(delay, std::chrono::milliseconds{0});
    auto entry = std::make_shared<Entry>(Entry{due, period, m_armed++, std::move(callback)});
    m_entries.push_back(entry);
    return Timer(std::move(entry));
}

void FakeScheduler::advance(std::chrono::milliseconds time) {
    const auto end = m_elapsed + time;
    while (const auto entry = nextDue(end)) {
        elapseTo(entry->due);
        fire(entry);
    }
    elapseTo(end);
}

void FakeScheduler::elapseTo(std::chrono::milliseconds time) {
    m_now += time - m_elapsed;
    m_elapsed = time;
}

void FakeScheduler::fire(const std::shared_ptr<Entry>& entry) {
    if (entry->period.count() > 0) {
        entry->due += entry->period;
        entry->turn = m_armed++;
    } else {
        entry->done = true;
    }
    entry->callback();
}

std::shared_ptr<FakeScheduler::Entry> FakeScheduler::nextDue(std::chrono::milliseconds until) {
    std::erase_if(m_entries, [](const auto& weak) {
        const auto entry = weak.lock();
        return !entry || entry->done;
    });
    std::shared_ptr<Entry> next;
    for (const auto& weak : m_entries) {
        const auto entry = weak.lock();
        if (entry->due > until)
            continue;
        if (!next || std::pair(entry->due, entry->turn) < std::pair(next->due, next->turn))
            next = entry;
    }
    return next;
}

std::size_t FakeScheduler::armedTimers() const {
    return static_cast<std::size_t>(std::ranges::count_if(m_entries, [](const auto& weak) {
        const auto entry = weak.lock();
        return entry && !entry->done;
    }));
}

} // namespace nightjar
