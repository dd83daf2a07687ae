// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/SessionNotificationCenter.h"

#include <utility>

namespace nightjar {
namespace {

constexpr std::size_t maximumWaiting = 1'000;

} // namespace

SessionNotificationCenter::SessionNotificationCenter(BusConnector& sessionBus, NotificationSettings settings)
    : m_bus(sessionBus), m_settings(std::move(settings)) {
    connect(&m_bus, &BusConnector::opened, this, &SessionNotificationCenter::busOpened);
    connect(&m_bus, &BusConnector::lost, this, &SessionNotificationCenter::busLost);
    connect(&m_bus, &BusConnector::failed, this, [this] { m_waiting.clear(); });
}

void SessionNotificationCenter::requestPermission() {
    use([](NotificationCenter& center) { center.requestPermission(); }, Importance::usual);
}

void SessionNotificationCenter::post(const Notification& notification) {
    const bool isAlarm = notification.sound == NotificationSound::critical;
    use([notification](NotificationCenter& center) { center.post(notification); },
        isAlarm ? Importance::alarm : Importance::usual);
}

void SessionNotificationCenter::use(Job job, Importance importance) {
    if (!m_center && m_bus.isConnected())
        busOpened();
    if (m_center && m_center->isConnected())
        return job(*m_center);
    if (m_waiting.size() < maximumWaiting || importance == Importance::alarm)
        m_waiting.push_back(std::move(job));
    m_bus.openNow();
}

void SessionNotificationCenter::busOpened() {
    // Others use the bus too: it can be open, and this be told of it later.
    if (!m_center)
        m_center = std::make_unique<FreedesktopNotificationCenter>(m_bus.bus(), m_settings);
    for (const auto& job : std::exchange(m_waiting, {}))
        job(*m_center);
}

void SessionNotificationCenter::busLost() {
    m_center.reset();
    if (!m_waiting.empty())
        m_bus.openNow();
}

} // namespace nightjar
