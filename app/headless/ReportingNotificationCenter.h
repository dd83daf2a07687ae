// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/NotificationCenter.h"

#include <functional>

namespace nightjar::headless {

/// Tells every notification to a reporter and hands it on to the desktop, where there is one to hand it to.
class ReportingNotificationCenter : public NotificationCenter {
public:
    /// Without a desktop the notifications are only reported.
    explicit ReportingNotificationCenter(NotificationCenter* desktop) : m_desktop(desktop) {}

    void setReporter(std::function<void(const Notification&)> reporter) { m_reporter = std::move(reporter); }

    void requestPermission() override {
        if (m_desktop)
            m_desktop->requestPermission();
    }
    void post(const Notification& notification) override {
        if (m_reporter)
            m_reporter(notification);
        if (m_desktop)
            m_desktop->post(notification);
    }

private:
    NotificationCenter* m_desktop;
    std::function<void(const Notification&)> m_reporter;
};

} // namespace nightjar::headless
