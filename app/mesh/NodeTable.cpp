// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/mesh/NodeTable.h"

#include "core/mesh/MeshMessage.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <tuple>

namespace nightjar {

namespace {

/// "!0000abcd"
std::string numberText(std::uint32_t number) {
    std::array<char, 8> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
    const auto count = static_cast<std::size_t>(end - digits.data());
    return "!" + std::string(digits.size() - count, '0') + std::string(digits.data(), count);
}

} // namespace

NodeTable::NodeTable(const TextServices& text, Announcer announcer) : m_text(text), m_nodes(announcer) {}

bool NodeTable::upsert(const MeshNode& node) {
    const auto known = m_nodes.get().find(node.number);
    const bool isKnown = known != m_nodes.get().end();
    if (isKnown && known->second.node == node)
        return false;

    const bool bringsPosition = node.position && (!isKnown || known->second.node.position != node.position);
    m_nodes.change([&](Entries& entries) {
        Entry& entry = entries[node.number];
        if (!isKnown || entry.node.longName != node.longName)
            entry.collationKey = m_text.collationKey(node.longName);
        entry.node = node;
        m_order.reset();
    });
    return bringsPosition;
}

void NodeTable::clear() {
    if (m_nodes.get().empty())
        return;
    m_nodes.change([this](Entries& entries) {
        entries.clear();
        m_order.reset();
    });
}

const MeshNode* NodeTable::find(std::uint32_t number) const {
    const auto found = m_nodes.get().find(number);
    return found == m_nodes.get().end() ? nullptr : &found->second.node;
}

bool NodeTable::comesBefore(const Entry& a, const Entry& b) {
    return std::tie(a.collationKey, a.node.longName, a.node.number) <
           std::tie(b.collationKey, b.node.longName, b.node.number);
}

const std::vector<MeshNode>& NodeTable::sorted(std::optional<std::uint32_t> guarded) const {
    if (m_order && m_order->guarded == guarded)
        return m_order->nodes;

    std::vector<const Entry*> entries;
    entries.reserve(m_nodes.get().size());
    for (const auto& [number, entry] : m_nodes.get())
        entries.push_back(&entry);
    std::ranges::sort(entries, [&guarded](const Entry* a, const Entry* b) {
        if (a->node.number == guarded || b->node.number == guarded)
            return a != b && a->node.number == guarded;
        return comesBefore(*a, *b);
    });

    Order order{.guarded = guarded, .nodes = {}};
    order.nodes.reserve(entries.size());
    for (const Entry* entry : entries)
        order.nodes.push_back(entry->node);
    return m_order.emplace(std::move(order)).nodes;
}

std::string NodeTable::displayName(std::uint32_t number) const {
    if (number == broadcastNodeNumber)
        return "Everyone";
    const MeshNode* node = find(number);
    if (node && !node->longName.empty())
        return node->longName;
    if (node && !node->shortName.empty())
        return node->shortName;
    return numberText(number);
}

} // namespace nightjar
