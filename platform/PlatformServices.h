// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/HostEnvironment.h"
#include "platform/MainThread.h"
#include "platform/NotificationCenter.h"
#include "platform/Preferences.h"
#include "platform/Scheduler.h"
#include "platform/TextServices.h"

namespace nightjar {

/// What the controllers need from the computer, real or simulated. Everything outlives the controllers.
struct PlatformServices {
    HostEnvironment& host;
    MainThread& mainThread;
    Scheduler& scheduler;
    Preferences& preferences;
    NotificationCenter& notifications;
    TextServices& text;
};

} // namespace nightjar
