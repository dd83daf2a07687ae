// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/TileQueue.h"

#include <algorithm>

namespace nightjar {

void TileQueue::want(const TileKey& key) {
    if (m_underWay.contains(key))
        return;
    const auto known = std::ranges::find(m_wanted, key, &Wanted::key);
    if (known != m_wanted.end())
        known->frame = m_frame;
    else
        m_wanted.push_back({key, m_frame});
}

std::optional<TileKey> TileQueue::start() {
    std::erase_if(m_wanted, [this](const Wanted& wanted) { return wanted.frame + patience < m_frame; });
    if (m_wanted.empty() || m_underWay.size() >= m_parallel)
        return std::nullopt;
    const TileKey key = m_wanted.front().key;
    m_wanted.erase(m_wanted.begin());
    m_underWay.insert(key);
    return key;
}

void TileQueue::clear() {
    m_wanted.clear();
}

} // namespace nightjar
