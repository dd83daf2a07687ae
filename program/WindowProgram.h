// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/ReportingNotificationCenter.h"
#include "platform/DesktopAppearance.h"
#include "platform/PlatformServices.h"
#include "platform/linux/SteadyPollClock.h"
#include "ui/window/NightjarApp.h"

#include <QString>

#include <optional>

namespace nightjar {

class NotificationBanners;

/// The program with its windows, and the event loop they need. Main thread, after the QApplication.
class WindowProgram {
public:
    struct World {
        PlatformServices platform;
        DesktopAppearance& appearance;
        QString cacheFolder;             ///< for map tiles; empty keeps them in memory
        bool showsNotifications = false; ///< in the window, where the desktop is left alone
    };
    explicit WindowProgram(const World& world);
    ~WindowProgram();

    [[nodiscard]] NightjarModel& model() { return m_app.model(); }
    /// Until the window is closed or the program is asked to end.
    void run();

    /// Chooses how controls look and in which font. Once, before any window.
    static void dress();

private:
    SteadyPollClock m_clock;
    headless::ReportingNotificationCenter m_notifications;
    NightjarApp m_app;
    NotificationBanners* m_banners = nullptr;
};

} // namespace nightjar
