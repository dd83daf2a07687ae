// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/map/TileKey.h"

#include <QHash>
#include <QImage>

namespace nightjar {

/// Pictures of tiles up to a number of bytes; the ones unused for longest go first. What was looked at in the
/// last few frames stays even beyond the limit: a large window would else ask for its own tiles for ever.
class TileCache {
public:
    explicit TileCache(qsizetype limit) : m_limit(limit) {}

    void beginFrame() { ++m_frame; }
    /// Null when it is not there; otherwise it counts as looked at.
    [[nodiscard]] const QImage* find(const TileKey& key);
    [[nodiscard]] bool contains(const TileKey& key) const { return m_entries.contains(key); }
    void insert(const TileKey& key, QImage image);
    void clear();
    [[nodiscard]] qsizetype bytes() const { return m_bytes; }

private:
    static constexpr quint64 protectedFrames = 4;

    struct Entry {
        QImage image;
        quint64 frame = 0;
    };

    void evict();

    qsizetype m_limit;
    qsizetype m_bytes = 0;
    quint64 m_frame = protectedFrames;
    QHash<TileKey, Entry> m_entries;
};

} // namespace nightjar
