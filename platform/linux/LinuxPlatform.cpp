// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/LinuxPlatform.h"

#include "platform/linux/CanberraOutput.h"

#include <QCoreApplication>

namespace nightjar {
namespace {

std::optional<std::filesystem::path> preferencesFile(const LinuxHostEnvironment& host) {
    return host.configurationFolder().transform(
        [](const std::filesystem::path& folder) { return folder / "Nightjar" / "preferences.json"; });
}

NotificationSettings withSound(AlertSound& sound) {
    NotificationSettings settings;
    settings.playSound = [&sound](NotificationSound wanted) { sound.play(wanted); };
    return settings;
}

} // namespace

LinuxPlatform::LinuxPlatform()
    : m_preferences(preferencesFile(m_host), m_scheduler),
      m_player(m_scheduler, std::make_unique<CanberraOutput>()),
      m_alertSound(m_player),
      m_systemBus(m_mainThread, m_scheduler, BusConnector::openSystemBus),
      m_sessionBus(m_mainThread, m_scheduler, BusConnector::openSessionBus),
      m_notifications(m_sessionBus, withSound(m_alertSound)),
      m_appearance(m_sessionBus, m_host.environmentVariable(PortalAppearance::overrideVariable)),
      m_text(IcuTextServices::systemLocale(m_host)),
      m_bluetooth(m_systemBus, m_scheduler),
      m_location(m_systemBus, m_scheduler, NotificationSettings().desktopEntry),
      m_sound(m_player, BundledSounds::folderBeside(QCoreApplication::applicationDirPath().toStdString())),
      m_wake(m_systemBus),
      m_messages(m_systemBus, m_sessionBus),
      m_networkBus(m_mainThread, m_scheduler, BusConnector::openSystemBus),
      m_network(m_networkBus, m_scheduler, m_links) {}

PlatformServices LinuxPlatform::services() {
    return {.host = m_host,
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

} // namespace nightjar
