// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/Published.h"
#include "core/mesh/MeshNode.h"
#include "platform/TextServices.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace nightjar {

/// The nodes of the mesh by number, and the order in which they are shown. Main thread.
/// A busy mesh changes the table far more often than anyone looks at it, so the order is made when it is
/// looked at.
class NodeTable {
public:
    NodeTable(const TextServices& text, Announcer announcer);

    /// Inserts the node, or replaces the one of its number as a whole. Returns whether it brings a position
    /// that differs from the one of the replaced node.
    bool upsert(const MeshNode& node);
    void clear();
    /// Announces that the nodes change their order while `change` is made elsewhere.
    template <class Change>
    void reorder(Change&& change) {
        m_nodes.change([&change](const auto&) { change(); });
    }

    [[nodiscard]] const MeshNode* find(std::uint32_t number) const;
    /// The guarded node before every other, the others by long name as a file browser orders names; equal
    /// names by code point, then by number. Valid until the table changes.
    [[nodiscard]] const std::vector<MeshNode>& sorted(std::optional<std::uint32_t> guarded) const;
    /// The name shown for a node, known or not; "Everyone" for the address of all nodes.
    [[nodiscard]] std::string displayName(std::uint32_t number) const;

private:
    struct Entry {
        MeshNode node;
        std::string collationKey; ///< of the long name
    };
    struct Order {
        std::optional<std::uint32_t> guarded;
        std::vector<MeshNode> nodes;
    };
    using Entries = std::unordered_map<std::uint32_t, Entry>;

    [[nodiscard]] static bool comesBefore(const Entry& a, const Entry& b);

    const TextServices& m_text;
    Published<Entries> m_nodes;
    mutable std::optional<Order> m_order; ///< absent until someone looks again
};

} // namespace nightjar
