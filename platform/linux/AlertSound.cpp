// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/AlertSound.h"

#include <canberra.h>

namespace nightjar {

AlertSound::AlertSound() = default;
AlertSound::~AlertSound() = default;

void AlertSound::Destroy::operator()(ca_context* context) const {
    ca_context_destroy(context);
}

std::unique_ptr<ca_context, AlertSound::Destroy> AlertSound::open() {
    ca_context* created = nullptr;
    if (ca_context_create(&created) != CA_SUCCESS)
        return nullptr;
    std::unique_ptr<ca_context, Destroy> context(created);
    // The driver for bare ALSA writes to standard error whenever it finds no card; the server's own says so
    // by its result.
    ca_context_set_driver(created, "pulse");
    ca_context_change_props(created, CA_PROP_APPLICATION_NAME, "Nightjar", nullptr);
    return context;
}

void AlertSound::play(NotificationSound sound) {
    const char* name = sound == NotificationSound::critical ? "alarm-clock-elapsed" : "message-new-instant";
    if (!m_context)
        m_context = open();
    if (!m_context)
        return;
    const int result =
        ca_context_play(m_context.get(), 0, CA_PROP_EVENT_ID, name, CA_PROP_MEDIA_ROLE, "event", nullptr);
    // A server that was restarted wants a new connection; it is made at the next sound.
    if (result != CA_SUCCESS)
        m_context.reset();
}

} // namespace nightjar
