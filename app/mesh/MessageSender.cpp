// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/mesh/MessageSender.h"

#include "core/base/Text.h"

#include <expected>

namespace nightjar {

MessageSender::MessageSender(RadioLink& radio, MainThread& mainThread, const Scheduler& scheduler,
                             MessageStore& store, const BaseConnection& connection,
                             Conversation& conversation, MeshStatus& status)
    : m_radio(radio),
      m_mainThread(mainThread),
      m_scheduler(scheduler),
      m_store(store),
      m_connection(connection),
      m_conversation(conversation),
      m_status(status) {}

void MessageSender::send(const std::string& text) {
    std::string sent(trimmed(text));
    if (sent.empty())
        return;
    m_radio.sendText(
        sent, m_conversation.recipient(), m_conversation.channel(),
        m_lifetime.guarded([this, sent](const std::expected<std::uint32_t, MeshRadioError>& packetID) {
            if (packetID) {
                keep(sent, *packetID);
            } else {
                m_status.errorMessage.set(packetID.error().description());
            }
        }));
}

void MessageSender::keep(const std::string& text, std::uint32_t packetID) {
    const MeshMessage message{.id = Uuid::random(),
                              .packetID = packetID,
                              .sender = m_connection.localNodeID().value_or(0),
                              .recipient = m_conversation.recipient().value_or(broadcastNodeNumber),
                              .channel = m_conversation.channel(),
                              .text = text,
                              .timestamp = m_scheduler.now(),
                              .isOutgoing = true};
    m_conversation.add(message);
    const auto tellFailure = [this](const std::expected<void, std::string>& stored) {
        if (!stored)
            m_status.errorMessage.set(stored.error());
    };
    m_store.append(message, maximumStoredMessages, m_lifetime.broughtHome(m_mainThread, tellFailure));
}

} // namespace nightjar
