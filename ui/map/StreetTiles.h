// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/map/TileFetcher.h"
#include "ui/map/TileQueue.h"

#include <QHash>
#include <QThread>
#include <QTimer>

#include <expected>
#include <functional>

namespace nightjar {

struct StreetTilesSettings {
    using Clock = std::chrono::steady_clock;

    QString urlTemplate; ///< with {z}, {x} and {y}
    int maximumParallel = 2;
    TileFetcherSettings fetcher;
    std::chrono::milliseconds retryAfter{30'000}; ///< a tile that failed; a server is left alone for longer
    std::function<Clock::time_point()> now = &Clock::now;
};

/// Tiles of one server, by the rules of such servers: only what is looked at, few at a time, and not again
/// soon after a failure. No request is made before `allow`. GUI thread.
class StreetTiles : public QObject {
    Q_OBJECT

public:
    static constexpr int maximumZoom = 19;

    explicit StreetTiles(StreetTilesSettings settings, QObject* parent = nullptr);
    ~StreetTiles() override;

    /// Why a template cannot be used, in one sentence.
    [[nodiscard]] static std::expected<void, QString> check(const QString& urlTemplate);

    void allow(bool isAllowed);
    void beginFrame() { m_queue.beginFrame(); }
    void want(const TileKey& key, bool isDark);

Q_SIGNALS:
    void arrived(nightjar::TileKey key, bool isDark, QImage picture);
    /// What failed may be wanted again.
    void retryDue();

private:
    using Time = StreetTilesSettings::Clock::time_point;

    void pump();
    void receive(const TileKey& key, bool isDark, TileAnswer answer, const QImage& picture);
    void backOff(const TileKey& key, TileAnswer answer);
    void awaken(Time when);
    [[nodiscard]] QUrl urlOf(const TileKey& key) const;

    StreetTilesSettings m_settings;
    TileQueue m_queue;
    bool m_isDark = false;
    QHash<TileKey, Time> m_notBefore;
    int m_failuresInARow = 0;
    Time m_serverNotBefore{};
    QTimer m_retry;
    std::shared_ptr<std::atomic<bool>> m_isAllowed;
    std::unique_ptr<QThread> m_thread;
    TileFetcher* m_fetcher; ///< lives on the thread
};

} // namespace nightjar
