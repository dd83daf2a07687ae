// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/json/LayoutScanner.h"
#include "core/mesh/MeshMessage.h"
#include "core/mesh/MeshPosition.h"

#include <optional>
#include <string_view>
#include <vector>

namespace nightjar {

/// Which records a store refuses as duplicates. It is shown the stored records one after the other, then
/// those that are added, and told how many of the oldest are gone.
template <class Record>
class DuplicateCheck;

/// A message is refused while any stored one has its packet and sender.
template <>
class DuplicateCheck<MeshMessage> {
public:
    DuplicateCheck();

    void passStored(const json::LayoutScanner& scanner);
    void endStored(std::string_view) { m_storedCount = m_keys.size(); }
    void add(const MeshMessage& message) { m_keys.push_back({message.packetID, message.sender}); }
    void drop(std::size_t count) { m_dropped = count; }

    [[nodiscard]] bool isDuplicate(const MeshMessage& message) const {
        return isAmong(message, m_dropped, m_keys.size());
    }
    [[nodiscard]] bool wasDuplicate(const MeshMessage& message) const {
        return isAmong(message, 0, m_storedCount);
    }

private:
    struct Key {
        std::uint32_t packetID;
        std::uint32_t sender;
    };
    [[nodiscard]] bool isAmong(const MeshMessage& message, std::size_t first, std::size_t last) const;

    std::size_t m_packetIDField;
    std::size_t m_senderField;
    std::vector<Key> m_keys;
    std::size_t m_storedCount = 0;
    std::size_t m_dropped = 0;
};

/// A position is refused when the last stored one has its node and coordinates.
template <>
class DuplicateCheck<MeshPosition> {
public:
    void passStored(const json::LayoutScanner&) {}
    void endStored(std::string_view lastRecord);
    void add(const MeshPosition& position) { m_last = position; }
    void drop(std::size_t) {} // the last one always stays

    [[nodiscard]] bool isDuplicate(const MeshPosition& position) const {
        return isSamePlace(m_last, position);
    }
    [[nodiscard]] bool wasDuplicate(const MeshPosition& position) const {
        return isSamePlace(m_lastStored, position);
    }

private:
    static bool isSamePlace(const std::optional<MeshPosition>& last, const MeshPosition& position);

    std::optional<MeshPosition> m_lastStored;
    std::optional<MeshPosition> m_last;
};

} // namespace nightjar
