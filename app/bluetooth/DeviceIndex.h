// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Uuid.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace nightjar {

/// Finds the place of an identifier in a list that only grows. It is cut into small tables, so that growing
/// moves a few thousand places at most, however long the list. Fewer than 2^32 - 1 places.
class DeviceIndex {
public:
    /// `identifierAt(place)` is the identifier that stands there.
    template <class IdentifierAt>
    [[nodiscard]] std::optional<std::size_t> find(const Uuid& id, IdentifierAt&& identifierAt) const {
        const auto hash = hashOf(id);
        const Slots& slots = m_tables[tableOf(hash)].slots;
        if (slots.empty())
            return std::nullopt;
        const auto mask = slots.size() - 1;
        for (auto i = slotOf(hash) & mask; slots[i].next != 0; i = (i + 1) & mask) {
            if (slots[i].mark == markOf(hash) && identifierAt(slots[i].next - 1) == id)
                return slots[i].next - 1;
        }
        return std::nullopt;
    }

    /// An identifier that is not there yet.
    void insert(const Uuid& id, std::size_t place);

private:
    struct Slot {
        std::uint32_t mark = 0; ///< a part of the hash: most others are told apart without a look at the list
        std::uint32_t next = 0; ///< the place and 1; 0: free
    };
    using Slots = std::vector<Slot>;
    struct Table {
        Slots slots; ///< a power of two of them, or none; at most three in four are taken
        std::size_t taken = 0;
    };

    [[nodiscard]] static std::uint64_t hashOf(const Uuid& id);
    [[nodiscard]] static std::size_t tableOf(std::uint64_t hash) { return hash >> 56U; }
    [[nodiscard]] static std::size_t slotOf(std::uint64_t hash) { return markOf(hash); }
    [[nodiscard]] static std::uint32_t markOf(std::uint64_t hash) { return static_cast<std::uint32_t>(hash); }
    static void put(Slots& slots, Slot slot);

    std::array<Table, 256> m_tables;
};

} // namespace nightjar
