// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/ServiceProber.h"

#include <algorithm>
#include <cmath>
#include <vector>

// What it means that a service did not answer: the service, its device, our own link or a computer that
// slept.

namespace nightjar {

bool ServiceProber::isInDoubt() const {
    return std::ranges::any_of(m_lines, [](const auto& item) { return item.second.isInDoubt; });
}

void ServiceProber::setUsable(int interfaceIndex, bool isUsable) {
    Line& line = m_lines[interfaceIndex];
    if (std::exchange(line.isUsable, isUsable) == isUsable)
        return;
    line.evidenceFrom = m_scheduler.steadyNow() + m_settings.wakeGrace;
    line.isSilenceBelieved = false;
    for (auto& [key, entry] : m_entries)
        if (key.interfaceIndex == interfaceIndex)
            entry.timeouts = 0;
    endDoubt(line);
}

bool ServiceProber::isEvidence(const Item& item) {
    const auto now = m_scheduler.steadyNow();
    return now - item.second.asked >= m_settings.shortestTimeout && now >= m_evidenceFrom &&
           now >= m_lines[item.first.interfaceIndex].evidenceFrom;
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
    for (auto& [index, line] : m_lines) {
        line.isSilenceBelieved = false;
        endDoubt(line);
    }
}

/// Another device that should answer there.
bool ServiceProber::isWitness(const Item& other, const Item& silent) const {
    return other.first.interfaceIndex == silent.first.interfaceIndex &&
           other.first.name != silent.first.name && other.second.isProven && !other.second.isGone;
}

bool ServiceProber::hasHeardSince(int interfaceIndex, SteadyTime time) {
    const Line& line = m_lines[interfaceIndex];
    return line.lastLife && *line.lastLife >= time;
}

/// Not those for which the daemon would answer out of its memory.
void ServiceProber::callWitnesses(const Item& silent) {
    if (hasHeardSince(silent.first.interfaceIndex, silent.second.asked))
        return;
    const auto now = m_scheduler.steadyNow();
    std::vector<Item*> witnesses;
    for (auto& item : m_entries)
        if (isWitness(item, silent) && !item.second.isInFlight && item.second.timeouts == 0 &&
            now - item.second.asked > m_settings.memory)
            witnesses.push_back(&item);
    const auto count = std::min(m_settings.witnesses, witnesses.size());
    const auto end = witnesses.begin() + static_cast<std::ptrdiff_t>(count);
    std::ranges::partial_sort(witnesses, end, {}, [](const Item* item) { return item->second.asked; });
    for (auto witness = witnesses.begin(); witness != end; ++witness)
        bringForward(**witness, now);
}

/// Whether nobody has been heard since this one was first asked in vain, though there should be others.
bool ServiceProber::isDoubtful(const Item& item) {
    const Line& line = m_lines[item.first.interfaceIndex];
    if (line.isInDoubt)
        return true;
    if (line.isSilenceBelieved || hasHeardSince(item.first.interfaceIndex, item.second.firstTimeout))
        return false;
    return std::ranges::any_of(m_entries, [&](const auto& other) { return isWitness(other, item); });
}

void ServiceProber::withdraw(Item& item) {
    const bool wasThere = item.second.isProven;
    item.second.isGone = true;
    if (!item.second.isInFlight)
        schedule(item, pauseOf(item.second));
    if (wasThere)
        m_handlers.changed(item.first);
}

void ServiceProber::heardSomebody(int interfaceIndex) {
    Line& line = m_lines[interfaceIndex];
    line.lastLife = m_scheduler.steadyNow();
    line.isSilenceBelieved = false;
    if (!line.isInDoubt)
        return;
    // Now that the link works, one more time-out tells.
    for (auto& [key, entry] : m_entries)
        if (key.interfaceIndex == interfaceIndex)
            entry.timeouts = std::min(entry.timeouts, m_settings.timeoutsUntilGone - 1);
    endDoubt(line);
}

void ServiceProber::beginDoubt(int interfaceIndex) {
    Line& line = m_lines[interfaceIndex];
    if (std::exchange(line.isInDoubt, true))
        return;
    line.doubt =
        m_scheduler.after(m_settings.doubtLimit, [this, interfaceIndex] { believeSilence(interfaceIndex); });
    m_handlers.doubtChanged();
}

void ServiceProber::endDoubt(Line& line) {
    line.doubt.cancel();
    if (std::exchange(line.isInDoubt, false))
        m_handlers.doubtChanged();
}

void ServiceProber::believeSilence(int interfaceIndex) {
    Line& line = m_lines[interfaceIndex];
    line.isSilenceBelieved = true;
    for (auto& item : m_entries)
        if (item.first.interfaceIndex == interfaceIndex && !item.second.isGone &&
            item.second.timeouts >= m_settings.timeoutsUntilGone)
            withdraw(item);
    endDoubt(line);
}

std::chrono::milliseconds ServiceProber::about(std::chrono::milliseconds time) {
    const auto tenth = time.count() / 10;
    return std::chrono::milliseconds(
        std::uniform_int_distribution<std::int64_t>(time.count() - tenth, time.count() + tenth)(m_random));
}

} // namespace nightjar
