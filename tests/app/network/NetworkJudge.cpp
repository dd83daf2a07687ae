// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/app/network/NetworkDay.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <utility>

namespace nightjar::testing {

namespace {

constexpr Moment tick = 5000;
constexpr Moment never = std::numeric_limits<Moment>::max();
constexpr Moment catchUp = 20'000;
constexpr Moment wakeUp = 60'000;
constexpr int slept = 5; // seconds

/// Is somebody looking, and can he see? The same for all devices.
struct Watchman {
    std::optional<Moment> since; ///< of the scan
    Moment seesFrom = 0;         ///< `never`: blind
    Moment awakeFrom = 0;
    int dateMoved = 0; ///< seconds since he looked last

    void take(const Event& event) {
        const bool seesAgain = event.what == Happening::told || event.what == Happening::ready;
        if (event.what == Happening::start && !since) {
            since = event.at;
            seesFrom = event.at;
            dateMoved = 0;
            awakeFrom = 0;
        } else if (event.what == Happening::stop) {
            since.reset();
        } else if (event.what == Happening::waiting) {
            seesFrom = never;
        } else if (event.what == Happening::clockSet) {
            dateMoved += event.value;
        } else if (seesAgain && seesFrom == never) {
            seesFrom = event.at + catchUp;
        }
    }
    [[nodiscard]] bool canJudge(Moment at) {
        if (since && std::exchange(dateMoved, 0) >= slept)
            awakeFrom = at + wakeUp;
        return since && at >= seesFrom && at >= awakeFrom;
    }
};

/// The story of one device.
class Story {
public:
    Story(std::size_t device, std::vector<Alert>& alerts) : m_device(device), m_alerts(alerts) {}

    void take(const Event& event, bool isScanning) {
        const bool isMine = event.device == m_device;
        switch (event.what) {
        case Happening::told:
            if (isScanning)
                hear(event);
            break;
        case Happening::start:
            if (!isScanning)
                endScan();
            break;
        case Happening::stop:
            endScan();
            break;
        default:
            if (isMine && m_isKnown)
                choose(event);
        }
    }
    /// Somebody who can see looks.
    void lookAt(Moment at) {
        if (!m_isKnown || !m_wantsAlert || isThere() || !m_isArmed || m_isToldOf || !m_goneSince)
            return;
        if (at - *m_goneSince < m_delay)
            return;
        m_isToldOf = true;
        m_alerts.push_back({at, m_device, false});
    }
    [[nodiscard]] std::string status() const {
        if (!m_isKnown)
            return "";
        if (isThere())
            return "Online · alarm armed";
        if (m_isToldOf)
            return "Offline · alert sent";
        return m_goneSince ? "Offline · waiting for grace period" : "Waiting to see this device online";
    }

private:
    [[nodiscard]] bool isThere() const {
        return std::ranges::any_of(m_heard, [](const auto& type) { return type.second != 0; });
    }
    void hear(const Event& told) {
        const auto mine = told.set & NetworkDay::anyOf(m_device);
        m_heard[told.value] = mine;
        m_isKnown = m_isKnown || mine != 0;
        if (!m_isKnown)
            return;
        if (isThere())
            m_goneSince.reset();
        if (!m_wantsAlert)
            return;
        if (!isThere()) {
            if (m_isArmed && !m_goneSince)
                m_goneSince = told.at;
            return;
        }
        m_isArmed = true;
        if (std::exchange(m_isToldOf, false))
            m_alerts.push_back({told.at, m_device, true});
    }
    void endScan() {
        m_heard.clear();
        m_isArmed = false;
        m_goneSince.reset();
    }
    void choose(const Event& event) {
        switch (event.what) {
        case Happening::alertOn:
            m_wantsAlert = true;
            [[fallthrough]];
        case Happening::track:
            if (isThere()) {
                m_isArmed = true;
                m_goneSince.reset();
            }
            break;
        case Happening::forget:
            m_isKnown = false;
            m_delay = 600'000;
            [[fallthrough]];
        case Happening::stopTracking:
            m_isArmed = false;
            [[fallthrough]];
        case Happening::alertOff:
            m_wantsAlert = false;
            m_isToldOf = false;
            m_goneSince.reset();
            break;
        case Happening::delay:
            m_delay = event.value * Moment{1000};
            m_isToldOf = false;
            m_goneSince = isThere() ? std::nullopt : std::optional(event.at);
            break;
        default:
            break;
        }
    }

    std::size_t m_device;
    std::vector<Alert>& m_alerts;
    std::map<int, Announced> m_heard; ///< by type
    bool m_isKnown = false;
    bool m_wantsAlert = false;
    bool m_isArmed = false;
    bool m_isToldOf = false;
    std::optional<Moment> m_goneSince;
    Moment m_delay = 600'000;
};

} // namespace

Verdict judge(const NetworkDay& day) {
    Verdict verdict;
    for (std::size_t device = 0; device < NetworkDay::devices; ++device) {
        Watchman watchman;
        Story story(device, verdict.alerts);
        Moment nextTick = never;
        const auto passTo = [&](Moment time) {
            for (; watchman.since && nextTick <= time; nextTick += tick) {
                if (watchman.canJudge(nextTick))
                    story.lookAt(nextTick);
            }
        };
        for (const Event& event : day.events) {
            passTo(event.at);
            story.take(event, watchman.since.has_value());
            if (event.what == Happening::start && !watchman.since)
                nextTick = event.at + tick;
            watchman.take(event);
            if (event.what == Happening::told && watchman.canJudge(event.at))
                story.lookAt(event.at);
        }
        passTo(day.end);
        verdict.atTheEnd[device] = story.status();
    }
    std::ranges::sort(verdict.alerts);
    return verdict;
}

std::vector<Alert> falseAlarms(const NetworkDay& day) {
    std::vector<Alert> wrong;
    for (const Alert& alert : day.alerts) {
        if (alert.isReturn)
            continue;
        Moment shortest = 600'000;
        Moment lastThere = -1;
        bool isWished = false;
        std::array<Announced, NetworkDay::types + 1> sets{};
        const auto there = [&] {
            return std::ranges::any_of(
                sets, [&](Announced set) { return (set & NetworkDay::anyOf(alert.device)) != 0; });
        };
        for (const Event& event : day.events) {
            if (event.at > alert.at)
                break;
            if (there())
                lastThere = event.at;
            if (event.what == Happening::told)
                sets[std::min(static_cast<std::size_t>(event.value), NetworkDay::types)] = event.set;
            if (event.what == Happening::start || event.what == Happening::stop)
                sets.fill(0);
            if (event.device != alert.device)
                continue;
            if (event.what == Happening::delay)
                shortest = std::min(shortest, event.value * Moment{1000});
            if (event.what == Happening::alertOn)
                isWished = true;
            if (event.what == Happening::alertOff || event.what == Happening::stopTracking ||
                event.what == Happening::forget)
                isWished = false;
        }
        if (!isWished || there() || lastThere < 0 || alert.at - lastThere < shortest)
            wrong.push_back(alert);
    }
    return wrong;
}

} // namespace nightjar::testing
