// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/simulated/SimulatedNode.h"

#include "bridge/simulated/Terrain.h"

#include <algorithm>
#include <cmath>

namespace nightjar::bridge {
namespace {

/// Above this level a radio means that it runs on external power.
constexpr double externalPower = 100;

float voltageAt(double level) {
    return static_cast<float>(std::round(330 + std::min(level, externalPower) * 0.9) / 100);
}

} // namespace

SimulatedNode::SimulatedNode(const NodePlan& plan, const WorldClock& clock, std::uint64_t seed)
    : m_plan(plan), m_clock(clock), m_random(seed, plan.number) {
    m_record.number = plan.number;
    m_record.longName = plan.longName;
    m_record.shortName = plan.shortName;
    m_record.hardware = plan.hardware;
    m_record.hopsAway = plan.hopsAway;
    if (plan.signalToNoise)
        m_record.signalToNoise = static_cast<float>(*plan.signalToNoise);
    drainBattery(0);
    if (plan.position)
        m_movement = makeMovement(plan.movement, *plan.position, Random(seed, ~plan.number));
    if (!plan.heardSecondsAgo)
        return;
    m_record.lastSeen = Date{clock.date(Elapsed{}) - Seconds{std::ceil(*plan.heardSecondsAgo)}};
    if (m_movement)
        setPosition(m_movement->fix(0), *m_record.lastSeen);
}

double SimulatedNode::firstReport() {
    return m_random.between(0, *m_plan.reportWorldSeconds);
}

double SimulatedNode::nextReport(double worldSeconds) {
    const bool moving = m_movement && m_movement->isMoving(worldSeconds);
    const double interval = moving ? m_plan.movingReportWorldSeconds.value_or(*m_plan.reportWorldSeconds)
                                   : *m_plan.reportWorldSeconds;
    return interval * m_random.between(0.9, 1.1);
}

void SimulatedNode::report(Elapsed now) {
    hear(now);
    if (!m_movement)
        return;
    const Date date = m_clock.date(now);
    // A fast world may give two fixes in one second, but only a later one counts as new.
    const bool tooSoon = m_record.position && date <= m_record.position->timestamp;
    const Date stamp = tooSoon ? Date{m_record.position->timestamp + Seconds{1}} : date;
    setPosition(m_movement->fix(m_clock.worldSeconds(now)), stamp);
    m_record.lastSeen = stamp;
}

void SimulatedNode::hear(Elapsed now) {
    const Date date = m_clock.date(now);
    m_record.lastSeen = m_record.lastSeen ? std::max(*m_record.lastSeen, date) : date;
    drainBattery(m_clock.worldSeconds(now));
    if (!m_plan.signalToNoise)
        return;
    // Quarters of a decibel, as the radio chip counts.
    m_record.signalToNoise =
        static_cast<float>(std::round((*m_plan.signalToNoise + m_random.between(-1.5, 1.5)) * 4) / 4);
}

void SimulatedNode::setPosition(Place place, Date date) {
    const Place told = rounded(place);
    m_record.position = MeshPosition{.id = m_random.uuid(),
                                     .nodeNumber = m_plan.number,
                                     .latitude = told.latitude,
                                     .longitude = told.longitude,
                                     .altitude = m_plan.altitude,
                                     .timestamp = date};
}

void SimulatedNode::drainBattery(double worldSeconds) {
    if (!m_plan.battery)
        return;
    double level = m_plan.battery->level;
    if (level <= externalPower)
        level = std::max(level - m_plan.battery->drainPerHour * worldSeconds / 3600, 1.0);
    m_record.batteryLevel = static_cast<std::uint32_t>(level);
    m_record.voltage = voltageAt(level);
}

} // namespace nightjar::bridge
