// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/PlatformServices.h"
#include "platform/linux/AlertSound.h"
#include "platform/linux/AvahiServiceBrowser.h"
#include "platform/linux/BluezCentral.h"
#include "platform/linux/BundledSounds.h"
#include "platform/linux/BusConnector.h"
#include "platform/linux/GeoclueLocationSource.h"
#include "platform/linux/IcuTextServices.h"
#include "platform/linux/JsonFilePreferences.h"
#include "platform/linux/LinuxHostEnvironment.h"
#include "platform/linux/LinuxMessageTransport.h"
#include "platform/linux/LogindWakeMonitor.h"
#include "platform/linux/PortalAppearance.h"
#include "platform/linux/QtMainThread.h"
#include "platform/linux/QtScheduler.h"
#include "platform/linux/SessionNotificationCenter.h"

namespace nightjar {

/// The real computer. Made on the main thread after the QCoreApplication, destroyed before it. Nothing slow
/// happens in the constructor: the buses are opened and the collation rules are loaded at their first use.
class LinuxPlatform {
public:
    LinuxPlatform();

    [[nodiscard]] PlatformServices services();
    /// For whoever shows windows.
    [[nodiscard]] DesktopAppearance& appearance() { return m_appearance; }
    /// A sentence for the user when the settings were damaged or could not be saved.
    [[nodiscard]] std::optional<std::string> problem() const { return m_preferences.problem(); }

private:
    LinuxHostEnvironment m_host;
    QtMainThread m_mainThread;
    QtScheduler m_scheduler;
    JsonFilePreferences m_preferences;
    SoundPlayer m_player;
    AlertSound m_alertSound;
    BusConnector m_systemBus;
    BusConnector m_sessionBus;
    SessionNotificationCenter m_notifications;
    PortalAppearance m_appearance;
    IcuTextServices m_text;
    BluezCentral m_bluetooth;
    GeoclueLocationSource m_location;
    BundledSounds m_sound;
    LogindWakeMonitor m_wake;
    LinuxMessageTransport m_messages;
    BusConnector m_networkBus;
    NetworkLinks m_links;
    AvahiServiceBrowser m_network;
};

} // namespace nightjar
