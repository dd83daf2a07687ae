// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/SoundPlayer.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace nightjar {

class SoundPlayer::Queue {
public:
    explicit Queue(std::unique_ptr<SoundOutput> output) : m_output(std::move(output)) {}

    void add(const Sound& sound, SteadyTime now) {
        const std::scoped_lock lock(m_mutex);
        if (std::ranges::find(m_waiting, sound, &Wanted::sound) == m_waiting.end())
            m_waiting.push_back({sound, now});
        m_changed.notify_one();
    }

    void end() {
        const std::scoped_lock lock(m_mutex);
        m_isOver = true;
        m_changed.notify_one();
    }

    /// On the thread of the sounds.
    void work() {
        while (const auto wanted = next()) {
            if (wanted->at >= m_quietUntil && !isPlayed(wanted->sound))
                m_quietUntil = wanted->at + quietTime;
        }
        m_output->close();
    }

private:
    struct Wanted {
        Sound sound;
        SteadyTime at;
    };

    std::optional<Wanted> next() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_isOver || !m_waiting.empty(); });
        if (m_isOver)
            return std::nullopt;
        auto wanted = std::move(m_waiting.front());
        m_waiting.pop_front();
        return wanted;
    }

    /// False when nothing can be heard.
    bool isPlayed(const Sound& sound) {
        if (m_isOpen && m_output->play(sound) != SoundOutput::Played::no)
            return true;
        // A server that was restarted wants a new connection.
        m_output->close();
        m_isOpen = isOpened();
        if (m_isOpen && m_output->play(sound) != SoundOutput::Played::no)
            return true;
        m_output->close();
        m_isOpen = false;
        return false;
    }

    bool isOpened() {
        using enum SoundOutput::Opened;
        const auto opened = m_output->open(SoundOutput::Way::soundServer);
        return opened == yes || (opened == wayIsMissing && m_output->open(SoundOutput::Way::hardware) == yes);
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Wanted> m_waiting; ///< guarded by m_mutex
    bool m_isOver = false;        ///< guarded by m_mutex
    // The rest belongs to the thread of the sounds.
    std::unique_ptr<SoundOutput> m_output;
    bool m_isOpen = false;
    SteadyTime m_quietUntil = SteadyTime::min();
};

SoundPlayer::SoundPlayer(const Scheduler& scheduler, std::unique_ptr<SoundOutput> output)
    : m_scheduler(scheduler), m_queue(std::make_shared<Queue>(std::move(output))) {}

SoundPlayer::~SoundPlayer() {
    m_queue->end();
}

void SoundPlayer::play(const Sound& sound) {
    m_queue->add(sound, m_scheduler.steadyNow());
    if (!m_isRunning)
        m_isRunning = m_thread.start([queue = m_queue] { queue->work(); });
}

} // namespace nightjar
