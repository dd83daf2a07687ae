// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/ControllerTable.h"
#include "app/headless/LineSink.h"
#include "core/mesh/GuardProfile.h"
#include "core/mesh/MeshMessage.h"
#include "core/mesh/MeshNode.h"

#include <QObject>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace nightjar::headless {

/// A controller with one field and one operation of each kind.
class StandIn : public QObject {
    Q_OBJECT
public:
    const std::vector<MeshNode>& nodes() const { return m_nodes; }
    const std::vector<MeshMessage>& messages() const { return m_messages; }
    const std::string& status() const { return m_status; }
    double radius() const { return m_radius; }
    std::optional<std::uint32_t> recipient() const { return m_recipient; }
    GuardProfile profile() const { return m_profile; }
    const std::map<std::uint32_t, std::string>& channels() const { return m_channels; }

    void setStatus(const std::string& text) { m_status = text, Q_EMIT statusChanged(); }
    void setRadius(double metres) { m_radius = metres, Q_EMIT radiusChanged(); }
    void setRecipient(std::optional<std::uint32_t> number) {
        m_recipient = number, Q_EMIT recipientChanged();
    }
    void setProfile(GuardProfile profile) { m_profile = profile, Q_EMIT profileChanged(); }
    void setNodes(std::vector<MeshNode> nodes) { m_nodes = std::move(nodes), Q_EMIT nodesChanged(); }
    void setMessages(std::vector<MeshMessage> all) { m_messages = std::move(all), Q_EMIT messagesChanged(); }
    void receive(MeshMessage message) { m_messages.push_back(std::move(message)), Q_EMIT messagesChanged(); }

    void refresh() { ++refreshes; }
    void connect(const std::optional<std::string>& port) { connectedTo = port.value_or("the selected one"); }
    std::string displayName(std::uint32_t number) const { return "node " + std::to_string(number); }

    int refreshes = 0;
    std::string connectedTo;

Q_SIGNALS:
    void nodesChanged();
    void messagesChanged();
    void statusChanged();
    void radiusChanged();
    void recipientChanged();
    void profileChanged();

private:
    std::vector<MeshNode> m_nodes;
    std::vector<MeshMessage> m_messages;
    std::string m_status = "idle";
    double m_radius = 75;
    std::optional<std::uint32_t> m_recipient;
    GuardProfile m_profile = GuardProfile::general;
    std::map<std::uint32_t, std::string> m_channels{{0, "Primary"}};
};

[[nodiscard]] ControllerTable standInTable(StandIn& standIn);

/// Keeps the lines that it is sent; full once it holds `room` of them.
class KeptLines : public LineSink {
public:
    void send(std::string_view line) override { lines.emplace_back(line); }
    [[nodiscard]] bool isFull() const override { return lines.size() >= room; }
    [[nodiscard]] std::vector<std::string> take() { return std::exchange(lines, {}); }

    std::vector<std::string> lines;
    std::size_t room = static_cast<std::size_t>(-1);
};

} // namespace nightjar::headless
