// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/simulated/Chatter.h"

#include <algorithm>

namespace nightjar::bridge {
namespace {

constexpr std::uint64_t randomStream = std::uint64_t{1} << 40;
constexpr std::uint64_t replyStream = std::uint64_t{2} << 40;
constexpr std::size_t packetBytes = 230;

std::string lowered(std::string_view text) {
    std::string result(text);
    for (char& letter : result) {
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    }
    return result;
}

/// With what was typed in place of the mark, cut to one packet between two characters.
std::string filled(std::string text, std::string_view typed) {
    constexpr std::string_view mark = "{text}";
    if (const auto at = text.find(mark); at != std::string::npos)
        text.replace(at, mark.size(), typed);
    if (text.size() <= packetBytes)
        return text;
    std::size_t end = packetBytes;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    text.resize(end);
    return text;
}

} // namespace

Chatter::Chatter(const Scenario& scenario, std::uint64_t seed, const WorldClock& clock, Agenda& agenda,
                 const NodeWorld& nodes, Say say)
    : m_scenario(scenario),
      m_clock(clock),
      m_agenda(agenda),
      m_nodes(nodes),
      m_say(std::move(say)),
      m_random(seed, randomStream),
      m_replyRandom(seed, replyStream) {}

void Chatter::start() {
    for (const ScriptedText& text : m_scenario.script) {
        m_agenda.in(m_clock.elapsed(text.worldSeconds),
                    [this, &text] { say(m_random, text.from, text.direct, text.channel, text.text); });
    }
    if (m_scenario.randomTexts && !m_nodes.alive().empty())
        scheduleRandom();
}

void Chatter::scheduleRandom() {
    const RandomTexts& plan = *m_scenario.randomTexts;
    const double wait = m_random.between(plan.leastWorldSeconds, plan.mostWorldSeconds);
    m_agenda.in(m_clock.elapsed(wait), [this] { sayRandom(); });
}

void Chatter::sayRandom() {
    if (m_stopped)
        return;
    const RandomTexts& plan = *m_scenario.randomTexts;
    const auto speakers = m_nodes.alive();
    const auto from = speakers[m_random.index(speakers.size())];
    const bool direct = m_random.share() < plan.directShare;
    const auto channel = plan.channels[m_random.index(plan.channels.size())];
    say(m_random, from, direct, direct ? 0 : channel, plan.texts[m_random.index(plan.texts.size())]);
    scheduleRandom();
}

void Chatter::say(Random& random, std::uint32_t from, bool direct, std::uint32_t channel, std::string text) {
    if (m_stopped)
        return;
    const auto base = m_nodes.baseNumber();
    m_say({.id = random.uuid(),
           .packetID = random.packetID(),
           .sender = from,
           .recipient = direct ? base : broadcastNodeNumber,
           .channel = channel,
           .text = std::move(text),
           .timestamp = m_clock.date(m_agenda.now()),
           .isOutgoing = from == base});
}

const Reply* Chatter::replyTo(const TextOrder& order) const {
    const auto typed = lowered(order.text);
    const auto found = std::ranges::find_if(
        m_scenario.replies, [&](const Reply& reply) { return typed.contains(lowered(reply.contains)); });
    return found == m_scenario.replies.end() ? nullptr : &*found;
}

void Chatter::answer(const TextOrder& order) {
    const Reply* reply = replyTo(order);
    const auto speakers = m_nodes.alive();
    if (!reply || speakers.empty())
        return;
    const bool direct = order.recipient && *order.recipient != broadcastNodeNumber;
    if (direct && !m_nodes.isAlive(*order.recipient))
        return;
    const auto anyone = speakers[m_replyRandom.index(speakers.size())];
    const auto from = direct ? *order.recipient : reply->from.value_or(anyone);
    m_agenda.in(
        WorldClock::realSeconds(reply->afterSeconds),
        [this, from, direct, channel = order.channel, text = filled(reply->text, order.text)]() mutable {
            say(m_replyRandom, from, direct, channel, std::move(text));
        });
}

} // namespace nightjar::bridge
