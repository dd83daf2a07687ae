// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/mesh/Conversation.h"

#include <utility>

namespace nightjar {

namespace {

std::map<std::uint32_t, std::string> initialChannels() {
    return {{0, "Primary"}};
}

std::uint64_t packetKey(const MeshMessage& message) {
    return std::uint64_t{message.sender} << 32U | message.packetID;
}

} // namespace

Conversation::Conversation(const Announcers& announcers)
    : m_messages(announcers.messages),
      m_channels(announcers.channels, initialChannels()),
      m_recipient(announcers.recipient),
      m_channel(announcers.channel) {}

void Conversation::restore(std::vector<MeshMessage> kept) {
    if (kept.empty())
        return;
    m_messages.change([&](std::vector<MeshMessage>& messages) {
        auto meanwhile = std::exchange(messages, std::move(kept));
        m_packets.clear();
        for (const auto& message : messages)
            remember(message);
        for (auto& message : meanwhile) {
            if (!message.isOutgoing && isKnown(message))
                continue;
            remember(message);
            messages.push_back(std::move(message));
        }
    });
}

bool Conversation::receive(const MeshMessage& message) {
    if (isKnown(message))
        return false;
    add(message);
    return true;
}

void Conversation::add(const MeshMessage& message) {
    m_messages.change([&](std::vector<MeshMessage>& messages) {
        remember(message);
        messages.push_back(message);
    });
}

void Conversation::nameChannel(std::uint32_t channel, const std::optional<std::string>& name) {
    auto shown = name.value_or(channel == 0 ? "Primary" : "Channel " + std::to_string(channel));
    const auto known = channels().find(channel);
    if (known != channels().end() && known->second == shown)
        return;
    m_channels.change([&](auto& channels) { channels[channel] = std::move(shown); });
}

void Conversation::resetChannels() {
    m_channels.set(initialChannels());
}

bool Conversation::isKnown(const MeshMessage& message) const {
    return message.packetID != 0 && m_packets.contains(packetKey(message));
}

void Conversation::remember(const MeshMessage& message) {
    if (message.packetID != 0)
        m_packets.insert(packetKey(message));
}

} // namespace nightjar
