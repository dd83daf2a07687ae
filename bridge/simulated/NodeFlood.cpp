// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/simulated/NodeFlood.h"

#include "bridge/simulated/Terrain.h"
#include "core/base/Random.h"
#include "core/bridge/BridgeJson.h"

#include <algorithm>

namespace nightjar::bridge {
namespace {

/// Away from the numbers that the scenario's own nodes are likely to have.
constexpr std::uint32_t firstNumber = 0xF000'0000;
constexpr std::size_t fixDigits = 12;

std::string hexadecimal(std::uint64_t value) {
    std::string digits(fixDigits, '0');
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, value >>= 4) {
        *digit = "0123456789ABCDEF"[value & 15];
    }
    return digits;
}

} // namespace

NodeFlood::NodeFlood(const Fault& fault, Place around, Date now, std::uint64_t seed)
    : m_lines(fault.lines),
      m_rounds((fault.lines + fault.nodes - 1) / fault.nodes),
      m_now(now),
      m_closingStatus(fault.text) {
    for (std::uint32_t i = 0; i < fault.nodes; ++i) {
        m_templates.push_back(makeTemplate(i, around, fault.newPositions, seed));
    }
}

std::string NodeFlood::dateOfRound(std::uint64_t round) const {
    const auto before = static_cast<double>(m_rounds - 1 - round);
    return iso8601Text(Date{m_now - Seconds{before}}).value_or("2001-01-01T00:00:00Z");
}

NodeFlood::Template NodeFlood::makeTemplate(std::uint32_t index, Place around, bool newPositions,
                                            std::uint64_t seed) {
    Random random(seed, firstNumber + index);
    const Place place = rounded(displaced(around, random.between(-4000, 4000), random.between(-4000, 4000)));
    const Date first{m_now - Seconds{static_cast<double>(m_rounds - 1)}};
    MeshtasticBridgeResponse response;
    response.event = MeshtasticBridgeEvent::node;
    auto& node = response.node.emplace();
    node.number = firstNumber + index;
    node.longName = "Flood " + std::to_string(index + 1);
    node.shortName = std::to_string(index % 10'000);
    node.hardware = "HELTEC_V3";
    node.batteryLevel = static_cast<std::uint32_t>(20 + random.index(80));
    node.voltage = 3.9F;
    node.signalToNoise = -7.25F;
    node.hopsAway = static_cast<std::uint32_t>(random.index(4));
    node.lastSeen = first;
    node.position = MeshPosition{random.uuid(), node.number, place.latitude, place.longitude, 60, first};

    Template made{.line = encodeLine(response).value_or("\n"), .dates = {}};
    const auto date = dateOfRound(0);
    for (auto at = made.line.find(date); at != std::string::npos; at = made.line.find(date, at + 1)) {
        made.dates.push_back(at);
    }
    // Of the two dates, in the order of the record's fields, the second is the fix's own.
    if (!newPositions)
        made.dates.resize(std::min<std::size_t>(made.dates.size(), 1));
    const auto id = made.line.find(node.position->id.text());
    if (newPositions && id != std::string::npos)
        made.fix = id + 36 - fixDigits;
    return made;
}

void NodeFlood::generate(std::string& out, std::size_t bytes) {
    while (out.size() < bytes && !isDone()) {
        const auto round = m_nextLine / m_templates.size();
        const auto index = m_nextLine % m_templates.size();
        if (index == 0) {
            m_date = dateOfRound(round);
            m_roundDigits = hexadecimal(round);
        }
        Template& source = m_templates[index];
        for (const auto at : source.dates)
            source.line.replace(at, m_date.size(), m_date);
        if (source.fix != std::string::npos)
            source.line.replace(source.fix, fixDigits, m_roundDigits);
        out += source.line;
        ++m_nextLine;
    }
}

} // namespace nightjar::bridge
