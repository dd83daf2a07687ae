// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/Lifetime.h"
#include "app/mesh/BaseConnection.h"
#include "app/mesh/Conversation.h"
#include "app/mesh/MeshStatus.h"
#include "core/mesh/RecordStore.h"
#include "platform/Scheduler.h"
#include "radio/RadioLink.h"

#include <string>

namespace nightjar {

/// How many messages are kept across restarts.
inline constexpr std::size_t maximumStoredMessages = 5000;

/// Sends a text and, once the radio has taken it, adds it to the conversation. Main thread.
class MessageSender {
public:
    MessageSender(RadioLink& radio, MainThread& mainThread, const Scheduler& scheduler, MessageStore& store,
                  const BaseConnection& connection, Conversation& conversation, MeshStatus& status);

    /// To the conversation's recipient on its channel; a text of white space alone is not sent. What fails is
    /// told to the user, also when the radio was let go of meanwhile: a text that was not sent must not
    /// vanish silently.
    void send(const std::string& text);

private:
    void keep(const std::string& text, std::uint32_t packetID);

    RadioLink& m_radio;
    MainThread& m_mainThread;
    const Scheduler& m_scheduler;
    MessageStore& m_store;
    const BaseConnection& m_connection;
    Conversation& m_conversation;
    MeshStatus& m_status;
    Lifetime m_lifetime;
};

} // namespace nightjar
