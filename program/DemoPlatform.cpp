// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "program/DemoPlatform.h"

#include "platform/linux/LinuxHostEnvironment.h"
#include "program/DemoBluetooth.h"
#include "program/DemoNetwork.h"

#include <chrono>
#include <utility>

namespace nightjar {
namespace {

constexpr std::uint64_t worldSeed = 7;
/// A Bluetooth radio takes its time to start.
constexpr std::chrono::milliseconds radioStart{600};

} // namespace

DemoPlatform::DemoPlatform(DemoProfile profile)
    : m_profile(std::move(profile)),
      m_appearance(m_sessionBus,
                   LinuxHostEnvironment().environmentVariable(PortalAppearance::overrideVariable)),
      m_bluetoothWorld(m_bluetooth, m_scheduler, demoPeripherals(), worldSeed),
      m_networkWorld(m_network, m_scheduler, demoHosts()) {
    m_preferences.setString("serialPort", m_profile.port());
    m_messages.refuse(MessageTransportError{.message = "Nobody outside the demo hears of it."});
}

PlatformServices DemoPlatform::services() {
    return {.host = m_profile,
            .mainThread = m_mainThread,
            .scheduler = m_scheduler,
            .preferences = m_preferences,
            .notifications = m_notifications,
            .text = m_text,
            .bluetooth = m_bluetooth,
            .location = m_location,
            .sound = m_sound,
            .wake = m_wake,
            .messages = m_messages,
            .services = m_network};
}

void DemoPlatform::begin() {
    m_radioStart = m_scheduler.after(radioStart, [this] { m_bluetoothWorld.begin(); });
    m_networkWorld.begin();
}

} // namespace nightjar
