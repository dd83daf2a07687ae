// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/ServiceProber.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace nightjar {

ServiceProber::ServiceProber(Scheduler& scheduler, const ProberSettings& settings, Ask ask, Handlers handlers)
    : m_scheduler(scheduler),
      m_settings(settings),
      m_ask(std::move(ask)),
      m_handlers(std::move(handlers)),
      m_dateOffset(scheduler.now().time_since_epoch() - scheduler.steadyNow().time_since_epoch()) {}

void ServiceProber::add(const ProbedService& service, Source source) {
    const auto [item, isNew] = m_entries.try_emplace(service);
    if (source == Source::heard)
        heardSomebody(service.interfaceIndex);
    if (!isNew) {
        if (source == Source::heard)
            foundThere(*item, about(periodOf(item->second)));
        return;
    }
    Entry& entry = item->second;
    entry.number = ++m_lastNumber;
    entry.isImportant = m_isImportant && m_isImportant(service);
    entry.isProven = source != Source::remembered;
    entry.isUnsettled = source == Source::remembered;
    m_unsettled += entry.isUnsettled ? 1 : 0;
    // Many that come at once are spread over the period.
    const auto period = periodOf(entry).count();
    auto spread = std::uniform_int_distribution<std::int64_t>(period / 10, period);
    schedule(*item, std::chrono::milliseconds(source == Source::heard ? spread(m_random) : 0));
}

void ServiceProber::remove(const ProbedService& service) {
    const auto item = m_entries.find(service);
    if (item == m_entries.end())
        return;
    unschedule(*item);
    settle(item->second);
    m_entries.erase(item);
}

void ServiceProber::removeType(const std::string& type) {
    std::vector<ProbedService> keys;
    for (const auto& [key, entry] : m_entries)
        if (key.type == type)
            keys.push_back(key);
    for (const auto& key : keys)
        remove(key);
}

void ServiceProber::clear() {
    m_important.clear();
    m_usual.clear();
    m_entries.clear();
    m_timer.cancel();
    ++m_round;
    m_inFlight = 0;
    m_unsettled = 0;
    for (auto& [index, line] : m_lines) {
        line.lastLife.reset();
        line.isSilenceBelieved = false;
        endDoubt(line);
    }
}

void ServiceProber::setImportant(IsImportant isImportant) {
    m_isImportant = std::move(isImportant);
    for (auto& item : m_entries) {
        auto& [key, entry] = item;
        const bool isQueued = queueOf(entry).erase({entry.due, &key}) > 0;
        const bool wasImportant = std::exchange(entry.isImportant, m_isImportant && m_isImportant(key));
        if (!isQueued)
            continue;
        queueOf(entry).emplace(entry.due, &key);
        // Not at once after a question: the daemon would send no other.
        if (entry.isImportant && !wasImportant)
            bringForward(item, entry.asked + 2 * m_settings.suspectPause);
    }
    armTimer();
}

std::optional<bool> ServiceProber::isThere(const ProbedService& service) const {
    const auto item = m_entries.find(service);
    if (item == m_entries.end())
        return std::nullopt;
    return item->second.isProven && !item->second.isGone;
}

std::chrono::milliseconds ServiceProber::periodOf(const Entry& entry) const {
    return entry.isImportant ? m_settings.period : m_settings.usualPeriod;
}

/// After a question that was answered by nobody.
std::chrono::milliseconds ServiceProber::pauseOf(const Entry& entry) const {
    if (!entry.isGone)
        return m_settings.suspectPause;
    return entry.isImportant ? m_settings.gonePause : m_settings.usualGonePause;
}

void ServiceProber::schedule(Item& item, std::chrono::milliseconds delay) {
    unschedule(item);
    item.second.due = m_scheduler.steadyNow() + delay;
    queueOf(item.second).emplace(item.second.due, &item.first);
    armTimer();
}

void ServiceProber::unschedule(Item& item) {
    queueOf(item.second).erase({item.second.due, &item.first});
}

/// Never later than it would be anyway.
void ServiceProber::bringForward(Item& item, SteadyTime due) {
    const auto now = m_scheduler.steadyNow();
    schedule(item, std::chrono::ceil<std::chrono::milliseconds>(
                       std::min(std::max(due, now), std::max(item.second.due, now)) - now));
}

/// Null when nothing is.
const ProbedService* ServiceProber::nextDue() const {
    const auto now = m_scheduler.steadyNow();
    for (const Queue* queue : {&m_important, &m_usual})
        if (!queue->empty() && queue->begin()->first <= now)
            return queue->begin()->second;
    return nullptr;
}

/// The next end of a question asks again when there is no room now.
void ServiceProber::armTimer() {
    m_timer.cancel();
    if (m_inFlight >= m_settings.mostInFlight || (m_important.empty() && m_usual.empty()))
        return;
    auto due = SteadyTime::max();
    for (const Queue* queue : {&m_important, &m_usual})
        if (!queue->empty())
            due = std::min(due, queue->begin()->first);
    const auto delay = std::chrono::ceil<std::chrono::milliseconds>(due - m_scheduler.steadyNow());
    m_timer = m_scheduler.after(std::max(delay, std::chrono::milliseconds::zero()), [this] { askNext(); });
}

void ServiceProber::askNext() {
    while (m_inFlight < m_settings.mostInFlight) {
        const auto* key = nextDue();
        if (!key)
            break;
        ask(*m_entries.find(*key));
    }
    armTimer();
}

void ServiceProber::ask(Item& item) {
    unschedule(item);
    item.second.isInFlight = true;
    item.second.asked = m_scheduler.steadyNow();
    ++m_inFlight;
    m_ask(item.first, [this, key = item.first, number = item.second.number, round = m_round](Answer answer) {
        if (round == m_round)
            answered(key, number, answer);
    });
}

void ServiceProber::answered(const ProbedService& key, std::uint64_t number, Answer answer) {
    --m_inFlight;
    lookForSleep();
    if (answer == Answer::there)
        heardSomebody(key.interfaceIndex);
    const auto item = m_entries.find(key);
    if (item != m_entries.end() && item->second.number == number) {
        item->second.isInFlight = false;
        // What the daemon remembers after a time-out has come to it since.
        if (answer == Answer::thereFromMemory && item->second.timeouts > 0)
            heardSomebody(key.interfaceIndex);
        if (answer == Answer::there || answer == Answer::thereFromMemory)
            foundThere(*item, untilNext(item->second, answer));
        else if (!m_lines[key.interfaceIndex].isUsable)
            schedule(*item, periodOf(item->second));
        else if (answer == Answer::timeout && isEvidence(*item))
            timedOut(*item);
        else
            schedule(*item, pauseOf(item->second));
        settle(item->second);
    }
    armTimer();
}

std::chrono::milliseconds ServiceProber::untilNext(Entry& entry, Answer answer) {
    entry.memories = answer == Answer::thereFromMemory ? entry.memories + 1 : 0;
    if (!entry.isImportant)
        return about(m_settings.usualPeriod);
    if (entry.memories % 2 == 0)
        return apartFromOthers();
    const auto longest = m_settings.memoryPause.count();
    return std::chrono::milliseconds(
        std::uniform_int_distribution<std::int64_t>(longest / 3, longest)(m_random));
}

/// Questions that are spread over the period tell of life all the time: a silence of one is then no doubt.
std::chrono::milliseconds ServiceProber::apartFromOthers() const {
    constexpr int choices = 12;
    const auto now = m_scheduler.steadyNow();
    auto best = m_settings.period;
    SteadyTime::duration widest{-1};
    for (int i = 0; i < choices; ++i) {
        const auto delay = m_settings.period + m_settings.period * i / (10 * choices);
        const auto next = m_important.lower_bound({now + delay, nullptr});
        auto gap = next == m_important.end() ? SteadyTime::duration::max() : next->first - (now + delay);
        if (next != m_important.begin())
            gap = std::min(gap, now + delay - std::prev(next)->first);
        if (gap > widest) {
            widest = gap;
            best = delay;
        }
    }
    return best;
}

void ServiceProber::foundThere(Item& item, std::chrono::milliseconds nextQuestion) {
    Entry& entry = item.second;
    entry.timeouts = 0;
    const bool wasThere = entry.isProven && !entry.isGone;
    entry.isProven = true;
    entry.isGone = false;
    if (!entry.isInFlight)
        schedule(item, nextQuestion);
    if (!wasThere)
        m_handlers.changed(item.first);
    settle(entry);
}

void ServiceProber::timedOut(Item& item) {
    Entry& entry = item.second;
    if (!entry.isGone && entry.timeouts++ == 0)
        entry.firstTimeout = entry.asked;
    schedule(item, pauseOf(entry));
    if (entry.isGone)
        return;
    if (entry.timeouts == 1)
        callWitnesses(item);
    if (entry.timeouts < m_settings.timeoutsUntilGone)
        return;
    if (isDoubtful(item))
        beginDoubt(item.first.interfaceIndex);
    else
        withdraw(item);
}

void ServiceProber::settle(Entry& entry) {
    if (!std::exchange(entry.isUnsettled, false))
        return;
    if (--m_unsettled == 0)
        m_handlers.settled();
}

} // namespace nightjar
