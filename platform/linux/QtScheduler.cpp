// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/QtScheduler.h"

#include <QObject>
#include <QTimerEvent>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>

namespace nightjar {
namespace {

using std::chrono::milliseconds;

enum class Repeat { once, always };

} // namespace

/// All armed timers by Qt's timer number. One object for all of them: a QTimer each could not be deleted
/// safely from within its own callback.
class QtScheduler::TimerTable final : public QObject {
public:
    /// What a `Timer` holds.
    struct Armed {
        Armed(std::weak_ptr<TimerTable> table, int number, std::uint64_t serial)
            : m_table(std::move(table)), m_number(number), m_serial(serial) {}
        ~Armed() {
            if (const auto table = m_table.lock())
                table->disarm(m_number, m_serial);
        }
        Armed(const Armed&) = delete;
        Armed& operator=(const Armed&) = delete;

    private:
        std::weak_ptr<TimerTable> m_table;
        int m_number;
        std::uint64_t m_serial;
    };

    static Timer arm(const std::shared_ptr<TimerTable>& table, milliseconds interval, Repeat repeat,
                     std::function<void()> callback) {
        // Precise throughout: a coarse timer may fire a twentieth early, and then a deadline has not passed
        // yet. With a handful of timers the saved wake-ups would not show.
        const int number = table->startTimer(interval, Qt::PreciseTimer);
        const auto serial = ++table->m_lastSerial;
        table->m_entries[number] = {serial, repeat,
                                    std::make_shared<std::function<void()>>(std::move(callback))};
        return Timer(std::make_shared<Armed>(table, number, serial));
    }

protected:
    void timerEvent(QTimerEvent* event) override {
        const auto found = m_entries.find(event->timerId());
        if (found == m_entries.end())
            return;
        // Held here, because the callback may cancel its own timer.
        const auto callback = found->second.callback;
        if (found->second.repeat == Repeat::once)
            disarm(found->first, found->second.serial);
        (*callback)();
    }

private:
    struct Entry {
        std::uint64_t serial = 0;
        Repeat repeat = Repeat::once;
        std::shared_ptr<std::function<void()>> callback;
    };

    /// Qt gives the number of a timer that has fired to the next one: the serial tells whose it is now.
    void disarm(int number, std::uint64_t serial) {
        const auto found = m_entries.find(number);
        if (found == m_entries.end() || found->second.serial != serial)
            return;
        killTimer(number);
        // The callback goes last and outside the table: what it owns may hold timers too.
        const auto callback = std::move(found->second.callback);
        m_entries.erase(found);
    }

    std::map<int, Entry> m_entries;
    std::uint64_t m_lastSerial = 0;
};

QtScheduler::QtScheduler() : m_timers(std::make_shared<TimerTable>()) {}
QtScheduler::~QtScheduler() = default;

Date QtScheduler::now() const {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return dateFromUnixSeconds(Seconds(sinceEpoch).count());
}

Timer QtScheduler::after(milliseconds delay, std::function<void()> callback) {
    constexpr milliseconds longest{std::numeric_limits<int>::max()};
    return TimerTable::arm(m_timers, std::clamp(delay, milliseconds{0}, longest), Repeat::once,
                           std::move(callback));
}

Timer QtScheduler::every(milliseconds period, std::function<void()> callback) {
    constexpr milliseconds longest{std::numeric_limits<int>::max()};
    return TimerTable::arm(m_timers, std::clamp(period, milliseconds{1}, longest), Repeat::always,
                           std::move(callback));
}

} // namespace nightjar
