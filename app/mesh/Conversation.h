// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/Published.h"
#include "core/mesh/MeshMessage.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace nightjar {

/// The messages, the names of the channels, and where the next message goes. Main thread.
class Conversation {
public:
    struct Announcers {
        Announcer messages;
        Announcer channels;
        Announcer recipient;
        Announcer channel;
    };

    explicit Conversation(const Announcers& announcers);

    [[nodiscard]] const std::vector<MeshMessage>& messages() const { return m_messages.get(); }
    [[nodiscard]] const std::map<std::uint32_t, std::string>& channels() const { return m_channels.get(); }
    [[nodiscard]] std::optional<std::uint32_t> recipient() const { return m_recipient.get(); }
    [[nodiscard]] std::uint32_t channel() const { return m_channel.get(); }
    void setRecipient(std::optional<std::uint32_t> number) { m_recipient.set(number); }
    void setChannel(std::uint32_t channel) { m_channel.set(channel); }

    /// Puts the kept messages before those that came meanwhile, and drops of the latter what was known
    /// already.
    void restore(std::vector<MeshMessage> kept);
    /// Takes a message from the mesh; false for one that the mesh delivered before.
    [[nodiscard]] bool receive(const MeshMessage& message);
    /// Adds a message that was sent.
    void add(const MeshMessage& message);

    void nameChannel(std::uint32_t channel, const std::optional<std::string>& name);
    void resetChannels();

private:
    [[nodiscard]] bool isKnown(const MeshMessage& message) const;
    void remember(const MeshMessage& message);

    Published<std::vector<MeshMessage>> m_messages;
    Published<std::map<std::uint32_t, std::string>> m_channels;
    Published<std::optional<std::uint32_t>> m_recipient;
    Published<std::uint32_t> m_channel;
    std::unordered_set<std::uint64_t> m_packets; ///< sender and packet of every message that has a packet
};

} // namespace nightjar
