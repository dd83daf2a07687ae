// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/TileCache.h"

#include <algorithm>
#include <utility>

namespace nightjar {

const QImage* TileCache::find(const TileKey& key) {
    const auto found = m_entries.find(key);
    if (found == m_entries.end())
        return nullptr;
    found->frame = m_frame;
    return &found->image;
}

void TileCache::insert(const TileKey& key, QImage image) {
    Entry& entry = m_entries[key];
    m_bytes += image.sizeInBytes() - entry.image.sizeInBytes();
    entry = {std::move(image), m_frame};
    evict();
}

void TileCache::clear() {
    m_entries.clear();
    m_bytes = 0;
}

void TileCache::evict() {
    while (m_bytes > m_limit) {
        const auto oldest =
            std::min_element(m_entries.begin(), m_entries.end(),
                             [](const Entry& a, const Entry& b) { return a.frame < b.frame; });
        if (oldest->frame + protectedFrames > m_frame)
            return;
        m_bytes -= oldest->image.sizeInBytes();
        m_entries.erase(oldest);
    }
}

} // namespace nightjar
