// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/bluetooth/DeviceIndex.h"

#include <cstring>

namespace nightjar {

std::uint64_t DeviceIndex::hashOf(const Uuid& id) {
    std::uint64_t head = 0;
    std::uint64_t tail = 0;
    std::memcpy(&head, id.bytes.data(), sizeof head);
    std::memcpy(&tail, id.bytes.data() + sizeof head, sizeof tail);
    // The finaliser of MurmurHash3 (public domain): every bit of the result depends on every bit of the
    // identifier.
    std::uint64_t hash = head ^ (tail * 0x9E3779B97F4A7C15U);
    hash = (hash ^ (hash >> 33U)) * 0xFF51AFD7ED558CCDU;
    hash = (hash ^ (hash >> 33U)) * 0xC4CEB9FE1A85EC53U;
    return hash ^ (hash >> 33U);
}

void DeviceIndex::put(Slots& slots, Slot slot) {
    const auto mask = slots.size() - 1;
    auto i = slot.mark & mask;
    while (slots[i].next != 0)
        i = (i + 1) & mask;
    slots[i] = slot;
}

void DeviceIndex::insert(const Uuid& id, std::size_t place) {
    const auto hash = hashOf(id);
    Table& table = m_tables[tableOf(hash)];
    if ((table.taken + 1) * 4 > table.slots.size() * 3) {
        constexpr std::size_t firstSlots = 16;
        Slots larger(table.slots.empty() ? firstSlots : table.slots.size() * 2);
        for (const Slot& slot : table.slots) {
            if (slot.next != 0)
                put(larger, slot);
        }
        table.slots = std::move(larger);
    }
    put(table.slots, {.mark = markOf(hash), .next = static_cast<std::uint32_t>(place + 1)});
    ++table.taken;
}

} // namespace nightjar
