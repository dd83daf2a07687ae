// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/map/TileKey.h"

#include <QSet>

#include <optional>
#include <vector>

namespace nightjar {

/// Which tiles to get next: what is looked at now, a few at a time. What has left the view before its turn is
/// dropped. Lives on one thread.
class TileQueue {
public:
    explicit TileQueue(int parallel) : m_parallel(parallel) {}

    void beginFrame() { ++m_frame; }
    void want(const TileKey& key);
    /// The next one, when one may be started; it is under way until `finish`.
    [[nodiscard]] std::optional<TileKey> start();
    void finish(const TileKey& key) { m_underWay.remove(key); }
    void clear();

private:
    static constexpr quint64 patience = 3; ///< frames; more than one map may be on the screen

    struct Wanted {
        TileKey key;
        quint64 frame = 0;
    };

    int m_parallel;
    quint64 m_frame = 0;
    std::vector<Wanted> m_wanted;
    QSet<TileKey> m_underWay;
};

} // namespace nightjar
