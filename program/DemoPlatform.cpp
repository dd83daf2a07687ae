// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "program/DemoPlatform.h"

#include <utility>

namespace nightjar {

DemoPlatform::DemoPlatform(DemoProfile profile) : m_profile(std::move(profile)) {
    m_preferences.setString("serialPort", m_profile.port());
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
            .messages = m_messages};
}

} // namespace nightjar
