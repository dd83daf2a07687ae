// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/PlatformServices.h"
#include "platform/simulated/FakeBluetoothCentral.h"
#include "platform/simulated/FakeLocationSource.h"
#include "platform/simulated/FakeMessageTransport.h"
#include "platform/simulated/FakeNotificationCenter.h"
#include "platform/simulated/FakePreferences.h"
#include "platform/simulated/FakeScheduler.h"
#include "platform/simulated/FakeServiceBrowser.h"
#include "platform/simulated/FakeSystemSound.h"
#include "platform/simulated/FakeTextServices.h"
#include "platform/simulated/FakeWakeMonitor.h"
#include "platform/simulated/ManualMainThread.h"
#include "platform/simulated/SimulatedHostEnvironment.h"

namespace nightjar {

/// A whole computer of fakes. One thread.
struct SimulatedComputer {
    [[nodiscard]] PlatformServices services() { return services(scheduler); }
    /// With another source of time.
    [[nodiscard]] PlatformServices services(Scheduler& time) {
        return {.host = host,
                .mainThread = mainThread,
                .scheduler = time,
                .preferences = preferences,
                .notifications = notifications,
                .text = text,
                .bluetooth = bluetooth,
                .location = location,
                .sound = sound,
                .wake = wake,
                .messages = messages,
                .services = network};
    }

    SimulatedHostEnvironment host;
    ManualMainThread mainThread;
    FakeScheduler scheduler;
    FakePreferences preferences;
    FakeNotificationCenter notifications;
    FakeTextServices text;
    FakeBluetoothCentral bluetooth;
    FakeLocationSource location;
    FakeSystemSound sound;
    FakeWakeMonitor wake;
    FakeMessageTransport messages;
    FakeServiceBrowser network;
};

} // namespace nightjar
