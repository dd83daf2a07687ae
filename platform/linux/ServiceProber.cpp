// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/ServiceProber.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace nightjar {

ServiceProber::ServiceProber(Scheduler& scheduler, const ProberSettings& settings, Ask ask, Handlers handlers)
    : m_scheduler(scheduler),
      m_settings(settings),
      m_ask(std::move(ask)),
      m_handlers(std::move(handlers)),
      m_dateOffset(scheduler.now().time_since_epoch() - scheduler.steadyNow().time_since_epoch()) {}

ServiceInstance ServiceProber::keyOf(const ServiceInstance& instance) {
    return {.name = instance.name, .type = instance.type, .domain = instance.domain};
}

void ServiceProber::add(const ServiceInstance& instance, Source source) {
    const auto [item, isNew] = m_entries.try_emplace(keyOf(instance));
    if (source == Source::heard)
        heardSomebody();
    if (!isNew) {
        if (source == Source::heard)
            foundThere(*item);
        return;
    }
    Entry& entry = item->second;
    entry.number = ++m_lastNumber;
    entry.isImportant = m_isImportant && m_isImportant(item->first);
    entry.isProven = source != Source::remembered;
    entry.isUnsettled = source == Source::remembered;
    m_unsettled += entry.isUnsettled ? 1 : 0;
    // Many that come at once are spread over the period.
    auto spread = std::uniform_int_distribution<std::int64_t>(m_settings.period.count() / 10,
                                                              m_settings.period.count());
    schedule(*item, std::chrono::milliseconds(source == Source::heard ? spread(m_random) : 0));
}

void ServiceProber::remove(const ServiceInstance& instance) {
    const auto item = m_entries.find(keyOf(instance));
    if (item == m_entries.end())
        return;
    unschedule(*item);
    settle(item->second);
    m_entries.erase(item);
}

void ServiceProber::removeType(const std::string& type) {
    std::vector<ServiceInstance> keys;
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
    m_lastLife.reset();
    m_isSilenceBelieved = false;
    endDoubt();
}

void ServiceProber::setImportant(std::function<bool(const ServiceInstance&)> isImportant) {
    m_isImportant = std::move(isImportant);
    for (auto& [key, entry] : m_entries) {
        const bool wasQueued = queueOf(entry).erase({entry.due, &key}) > 0;
        entry.isImportant = m_isImportant && m_isImportant(key);
        if (wasQueued)
            queueOf(entry).emplace(entry.due, &key);
    }
}

std::optional<bool> ServiceProber::isThere(const ServiceInstance& instance) const {
    const auto item = m_entries.find(keyOf(instance));
    if (item == m_entries.end())
        return std::nullopt;
    return item->second.isProven && !item->second.isGone;
}

void ServiceProber::schedule(Entries::value_type& item, std::chrono::milliseconds delay) {
    unschedule(item);
    item.second.due = m_scheduler.steadyNow() + delay;
    queueOf(item.second).emplace(item.second.due, &item.first);
    armTimer();
}

void ServiceProber::unschedule(Entries::value_type& item) {
    queueOf(item.second).erase({item.second.due, &item.first});
}

/// Null when nothing is.
const ServiceInstance* ServiceProber::nextDue() const {
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

void ServiceProber::ask(Entries::value_type& item) {
    unschedule(item);
    item.second.isInFlight = true;
    item.second.asked = m_scheduler.steadyNow();
    ++m_inFlight;
    m_ask(item.first, [this, key = item.first, number = item.second.number, round = m_round](Answer answer) {
        if (round == m_round)
            answered(key, number, answer);
    });
}

void ServiceProber::answered(const ServiceInstance& key, std::uint64_t number, Answer answer) {
    --m_inFlight;
    lookForSleep();
    if (answer == Answer::there)
        heardSomebody();
    const auto item = m_entries.find(key);
    if (item != m_entries.end() && item->second.number == number) {
        item->second.isInFlight = false;
        const auto now = m_scheduler.steadyNow();
        const bool isEvidence =
            now - item->second.asked >= m_settings.shortestTimeout && now >= m_evidenceFrom;
        // What the daemon remembers after a time-out has come to it since.
        if (answer == Answer::thereFromMemory && item->second.timeouts > 0)
            heardSomebody();
        if (answer == Answer::there || answer == Answer::thereFromMemory)
            foundThere(*item);
        else if (answer == Answer::timeout && isEvidence)
            timedOut(*item);
        else
            schedule(*item, item->second.isGone ? m_settings.gonePause : m_settings.suspectPause);
        settle(item->second);
    }
    armTimer();
}

void ServiceProber::foundThere(Entries::value_type& item) {
    Entry& entry = item.second;
    entry.timeouts = 0;
    const bool wasThere = entry.isProven && !entry.isGone;
    entry.isProven = true;
    entry.isGone = false;
    if (!entry.isInFlight)
        schedule(item, about(m_settings.period));
    if (!wasThere)
        m_handlers.changed(item.first);
    settle(entry);
}

void ServiceProber::timedOut(Entries::value_type& item) {
    Entry& entry = item.second;
    if (entry.isGone)
        return schedule(item, m_settings.gonePause);
    if (entry.timeouts++ == 0)
        entry.firstTimeout = entry.asked;
    schedule(item, m_settings.suspectPause);
    if (entry.timeouts < m_settings.timeoutsUntilGone)
        return;
    if (m_isInDoubt || isDoubtful(item))
        beginDoubt();
    else
        withdraw(item);
}

void ServiceProber::withdraw(Entries::value_type& item) {
    const bool wasThere = item.second.isProven;
    item.second.isGone = true;
    if (!item.second.isInFlight)
        schedule(item, m_settings.gonePause);
    if (wasThere)
        m_handlers.changed(item.first);
}

void ServiceProber::settle(Entry& entry) {
    if (!std::exchange(entry.isUnsettled, false))
        return;
    if (--m_unsettled == 0)
        m_handlers.settled();
}

/// The date goes on while the computer sleeps, steady time does not.
void ServiceProber::lookForSleep() {
    const Seconds offset = m_scheduler.now().time_since_epoch() - m_scheduler.steadyNow().time_since_epoch();
    const Seconds jump = offset - std::exchange(m_dateOffset, offset);
    if (std::abs(jump.count()) < Seconds(m_settings.sleepJump).count())
        return;
    m_evidenceFrom = m_scheduler.steadyNow() + m_settings.wakeGrace;
    for (auto& [key, entry] : m_entries)
        entry.timeouts = 0;
    m_isSilenceBelieved = false;
    endDoubt();
}

/// Whether nobody has been heard since this one was first asked in vain, though there should be others.
bool ServiceProber::isDoubtful(const Entries::value_type& item) const {
    if (m_isSilenceBelieved || (m_lastLife && *m_lastLife >= item.second.firstTimeout))
        return false;
    return std::ranges::any_of(m_entries, [&](const auto& other) {
        return other.first.name != item.first.name && other.second.isProven && !other.second.isGone;
    });
}

void ServiceProber::heardSomebody() {
    m_lastLife = m_scheduler.steadyNow();
    m_isSilenceBelieved = false;
    if (!m_isInDoubt)
        return;
    // Now that the link works, one more time-out tells.
    for (auto& [key, entry] : m_entries)
        entry.timeouts = std::min(entry.timeouts, m_settings.timeoutsUntilGone - 1);
    endDoubt();
}

void ServiceProber::beginDoubt() {
    if (std::exchange(m_isInDoubt, true))
        return;
    m_doubt = m_scheduler.after(m_settings.doubtLimit, [this] { believeSilence(); });
    m_handlers.doubtChanged();
}

void ServiceProber::endDoubt() {
    m_doubt.cancel();
    if (std::exchange(m_isInDoubt, false))
        m_handlers.doubtChanged();
}

void ServiceProber::believeSilence() {
    m_isSilenceBelieved = true;
    for (auto& item : m_entries)
        if (!item.second.isGone && item.second.timeouts >= m_settings.timeoutsUntilGone)
            withdraw(item);
    endDoubt();
}

std::chrono::milliseconds ServiceProber::about(std::chrono::milliseconds time) {
    const auto tenth = time.count() / 10;
    return std::chrono::milliseconds(
        std::uniform_int_distribution<std::int64_t>(time.count() - tenth, time.count() + tenth)(m_random));
}

} // namespace nightjar
