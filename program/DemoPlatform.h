// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/PlatformServices.h"
#include "platform/linux/BusConnector.h"
#include "platform/linux/IcuTextServices.h"
#include "platform/linux/JsonFilePreferences.h"
#include "platform/linux/PortalAppearance.h"
#include "platform/linux/QtMainThread.h"
#include "platform/linux/QtScheduler.h"
#include "platform/simulated/BluetoothWorld.h"
#include "platform/simulated/FakeBluetoothCentral.h"
#include "platform/simulated/FakeMessageTransport.h"
#include "platform/simulated/FakeServiceBrowser.h"
#include "platform/simulated/FakeSystemSound.h"
#include "platform/simulated/FakeWakeMonitor.h"
#include "platform/simulated/NetworkWorld.h"
#include "program/DemoLocation.h"
#include "program/DemoProfile.h"

namespace nightjar {

/// The demo's computer with the real event loop: settings live in memory, notifications go nowhere, and
/// Bluetooth devices and the network are made up.
class DemoPlatform {
public:
    /// The base radio of the profile is the one that was used last, so it is connected at the start.
    explicit DemoPlatform(DemoProfile profile);

    [[nodiscard]] PlatformServices services();
    /// The one thing taken from the real desktop: its colours.
    [[nodiscard]] DesktopAppearance& appearance() { return m_appearance; }
    /// Sets the world in motion. To be called once the controllers are there.
    void begin();

private:
    class Silence final : public NotificationCenter {
    public:
        void requestPermission() override {}
        void post(const Notification&) override {}
    };

    DemoProfile m_profile;
    QtMainThread m_mainThread;
    QtScheduler m_scheduler;
    JsonFilePreferences m_preferences{std::nullopt, m_scheduler};
    BusConnector m_sessionBus{m_mainThread, m_scheduler, BusConnector::openSessionBus};
    PortalAppearance m_appearance;
    Silence m_notifications;
    IcuTextServices m_text{std::string()};
    FakeBluetoothCentral m_bluetooth;
    DemoLocation m_location{m_scheduler};
    FakeSystemSound m_sound;
    FakeWakeMonitor m_wake;
    FakeMessageTransport m_messages;
    FakeServiceBrowser m_network;
    BluetoothWorld m_bluetoothWorld;
    NetworkWorld m_networkWorld;
    Timer m_radioStart;
};

} // namespace nightjar
