// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/BluetoothCentral.h"
#include "platform/HostEnvironment.h"
#include "platform/LocationSource.h"
#include "platform/MainThread.h"
#include "platform/MessageTransport.h"
#include "platform/NotificationCenter.h"
#include "platform/Preferences.h"
#include "platform/Scheduler.h"
#include "platform/ServiceBrowser.h"
#include "platform/SystemSound.h"
#include "platform/TextServices.h"
#include "platform/WakeMonitor.h"

namespace nightjar {

/// What the controllers need from the computer, real or simulated. Everything outlives the controllers.
struct PlatformServices {
    HostEnvironment& host;
    MainThread& mainThread;
    Scheduler& scheduler;
    Preferences& preferences;
    NotificationCenter& notifications;
    TextServices& text;
    BluetoothCentral& bluetooth;
    LocationSource& location;
    SystemSound& sound;
    WakeMonitor& wake;
    MessageTransport& messages;
    ServiceBrowser& services;

    /// The same computer with other notifications.
    [[nodiscard]] PlatformServices with(NotificationCenter& other) const {
        return {host,      mainThread, scheduler, preferences, other,    text,
                bluetooth, location,   sound,     wake,        messages, services};
    }
};

} // namespace nightjar
