// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/app/bluetooth/LossRules.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace nightjar::testing {

namespace {

/// An event or a tick, with what held when it came.
struct Entry {
    Moment at = 0;
    const Event* event = nullptr; ///< none: a tick
    bool checks = false;          ///< a tick that looks for losses
    bool disarms = false;
    bool clears = false;
    bool isHearing = false;
    bool isFinding = false;
};

/// Puts the ticks between the events and works out what the radio did.
class Timeline {
public:
    explicit Timeline(const Day& day) {
        for (const Event& event : day.events) {
            tickUntil(event.at);
            live(event);
        }
        tickUntil(day.end);
    }

    [[nodiscard]] const std::vector<Entry>& entries() const { return m_entries; }

private:
    void tickUntil(Moment time) {
        while (m_nextTick && *m_nextTick <= time) {
            Entry entry{.at = *m_nextTick, .disarms = m_hasSlept};
            if (std::exchange(m_hasSlept, false))
                m_isMonitoring = m_isScanning;
            entry.checks = m_isScanning && m_isMonitoring;
            m_entries.push_back(entry);
            *m_nextTick += 5000;
        }
    }

    void live(const Event& event) {
        Entry entry{.at = event.at, .event = &event, .isHearing = m_isScanning, .isFinding = m_isFinding};
        apply(event, entry);
        m_entries.push_back(entry);
    }

    void apply(const Event& event, Entry& entry) {
        switch (event.what) {
        case Happening::startScanning:
            m_isRequested = true;
            if (m_isOn)
                start(entry);
            break;
        case Happening::stopFinding:
            m_isFinding = false;
            [[fallthrough]];
        case Happening::stopScanning:
            m_isRequested = false;
            end(entry);
            break;
        case Happening::startFinding:
            if (m_isOn)
                find(event.at);
            break;
        case Happening::radioOff:
            m_isOn = false;
            if (m_isScanning)
                end(entry);
            break;
        case Happening::radioOn:
            m_isOn = true;
            if (m_isRequested) {
                start(entry);
            } else if (m_isFinding) {
                find(event.at);
            }
            break;
        case Happening::wakeUnnoticed:
            m_hasSlept = true;
            break;
        case Happening::wake:
            m_hasSlept = false;
            m_isMonitoring = m_isScanning;
            entry.disarms = true;
            break;
        default:
            break;
        }
    }

    void start(Entry& entry) {
        entry.disarms = true;
        entry.clears = !m_isFinding;
        m_isScanning = m_isMonitoring = true;
        keepTicking(entry.at);
    }
    void find(Moment at) {
        m_isFinding = m_isScanning = true;
        keepTicking(at);
    }
    void end(Entry& entry) {
        entry.disarms = true;
        m_isScanning = m_isMonitoring = false;
        m_nextTick.reset();
    }
    void keepTicking(Moment at) { m_nextTick = m_nextTick.value_or(at + 5000); }

    std::vector<Entry> m_entries;
    bool m_isOn = true;
    bool m_isRequested = false;
    bool m_isScanning = false;
    bool m_isFinding = false;
    bool m_isMonitoring = false;
    bool m_hasSlept = false;
    std::optional<Moment> m_nextTick;
};

/// What is true of one device at a place of the timeline, each time looked up from the beginning of time.
class DeviceHistory {
public:
    DeviceHistory(const std::vector<Entry>& entries, std::size_t device)
        : m_entries(entries), m_device(device) {
        m_isHeard.resize(entries.size());
        Moment stamp = -10'000;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const Entry& entry = entries[i];
            if (!is(i, Happening::sent) || !entry.isHearing || (!entry.isFinding && entry.at - stamp < 2000))
                continue;
            stamp = entry.at;
            m_isHeard[i] = entry.event->value < 0;
        }
    }

    [[nodiscard]] std::vector<Alert> alerts() {
        for (std::size_t i = 0; i < m_entries.size(); ++i) {
            if (m_entries[i].checks && isLossDue(i)) {
                add(i, " is no longer nearby");
                m_latestLoss = i;
            } else if (isTrackedHearing(i) && isAlerted(i) && isEnabled(i)) {
                add(i, " is nearby again");
            }
        }
        return m_alerts;
    }

private:
    using Place = std::optional<std::size_t>;

    [[nodiscard]] bool is(std::size_t i, Happening what) const {
        const auto* event = m_entries[i].event;
        return event && event->device == m_device && event->what == what;
    }
    /// The last entry before `end` of which `condition` holds.
    template <class Condition>
    [[nodiscard]] Place last(std::size_t end, Condition&& condition) const {
        for (std::size_t i = end; i-- > 0;) {
            if (condition(i))
                return i;
        }
        return std::nullopt;
    }

    [[nodiscard]] bool isTracked(std::size_t i) const {
        const auto changed =
            last(i, [&](auto j) { return is(j, Happening::track) || is(j, Happening::stopTracking); });
        return changed && is(*changed, Happening::track);
    }
    [[nodiscard]] bool beginsTracking(std::size_t i) const {
        return is(i, Happening::track) && !isTracked(i);
    }
    [[nodiscard]] bool isEnabled(std::size_t i) const {
        const auto changed = last(i, [&](auto j) {
            return is(j, Happening::alertOn) || is(j, Happening::alertOff) || beginsTracking(j);
        });
        return changed && is(*changed, Happening::alertOn);
    }
    [[nodiscard]] Moment delay(std::size_t i) const {
        const auto changed = last(i, [&](auto j) { return is(j, Happening::delay) || beginsTracking(j); });
        const int seconds = changed && is(*changed, Happening::delay) ? m_entries[*changed].event->value : 30;
        return std::max(seconds, 15) * Moment{1000};
    }
    [[nodiscard]] std::string name(std::size_t i) const {
        const auto changed = last(i, [&](auto j) { return is(j, Happening::rename) || beginsTracking(j); });
        return changed ? m_entries[*changed].event->name : std::string();
    }

    [[nodiscard]] bool isTrackedHearing(std::size_t i) const { return m_isHeard[i] && isTracked(i); }
    [[nodiscard]] Place lastHeard(std::size_t i) const {
        return last(i, [&](auto j) { return static_cast<bool>(m_isHeard[j]); });
    }
    /// The alert was switched on while the device was on the list and heard within five seconds.
    [[nodiscard]] bool isEnabledInHearing(std::size_t i) const {
        if (!is(i, Happening::alertOn) || !isTracked(i))
            return false;
        const auto heard = lastHeard(i);
        const auto cleared = last(i, [&](auto j) { return m_entries[j].clears; });
        return heard && heard > cleared && m_entries[i].at - m_entries[*heard].at <= 5000;
    }
    [[nodiscard]] bool isArmed(std::size_t i) const {
        // A tick that notices a wake disarms before it looks.
        const auto disarmed = last(i + 1, [&](auto j) { return m_entries[j].disarms; });
        return last(i, [&](auto j) { return isTrackedHearing(j) || isEnabledInHearing(j); }) > disarmed;
    }
    [[nodiscard]] bool isAlerted(std::size_t i) const {
        const auto forgiven = last(i, [&](auto j) {
            return (m_isHeard[j] || is(j, Happening::alertOff) || is(j, Happening::delay)) && isTracked(j);
        });
        return m_latestLoss > forgiven;
    }
    [[nodiscard]] bool isLossDue(std::size_t i) const {
        const auto heard = lastHeard(i);
        return heard && m_entries[*heard].at + delay(i) <= m_entries[i].at && isTracked(i) && isEnabled(i) &&
               isArmed(i) && !isAlerted(i);
    }
    void add(std::size_t i, const char* what) {
        m_alerts.push_back({m_entries[i].at, m_device, name(i) + what});
    }

    const std::vector<Entry>& m_entries;
    std::size_t m_device;
    std::vector<bool> m_isHeard; ///< with a reading, and not held back
    Place m_latestLoss;
    std::vector<Alert> m_alerts;
};

} // namespace

std::vector<Alert> alertsDue(const Day& day) {
    const Timeline timeline(day);
    std::vector<Alert> alerts;
    for (std::size_t device = 0; device < Day::devices; ++device) {
        const auto own = DeviceHistory(timeline.entries(), device).alerts();
        alerts.insert(alerts.end(), own.begin(), own.end());
    }
    std::ranges::stable_sort(alerts, {},
                             [](const Alert& alert) { return std::pair(alert.at, alert.device); });
    return alerts;
}

} // namespace nightjar::testing
