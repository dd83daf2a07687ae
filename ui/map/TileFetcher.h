// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/map/TileKey.h"

#include <QImage>
#include <QObject>
#include <QString>
#include <QUrl>

#include <atomic>
#include <chrono>
#include <memory>

class QNetworkAccessManager;
class QNetworkDiskCache;
class QNetworkReply;

namespace nightjar {

struct TileFetcherSettings {
    QString cacheFolder;
    QString userAgent;
    std::chrono::milliseconds timeout{15'000};              ///< for a whole answer, however it trickles
    std::chrono::seconds minimumAge = std::chrono::days(7); ///< a tile on disk is not asked for again before
};

enum class TileAnswer {
    picture,
    missing, ///< the server has none there
    refused, ///< the server wants to be left alone
    failed,
};

/// Gets tiles over HTTP, decoded, with a bounded cache on disk. Lives on a thread of its own from its first
/// `fetch` on, since a disk cache reads and writes where it is used.
class TileFetcher : public QObject {
    Q_OBJECT

public:
    TileFetcher(TileFetcherSettings settings, std::shared_ptr<const std::atomic<bool>> isAllowed);
    ~TileFetcher() override;

    /// Encrypted, or to this computer itself.
    [[nodiscard]] static bool isSafe(const QUrl& url);

    /// Answers by `fetched`. Makes no request when it is no longer allowed.
    void fetch(const TileKey& key, const QUrl& url, bool isDark);
    void abortAll();

Q_SIGNALS:
    void fetched(nightjar::TileKey key, bool isDark, nightjar::TileAnswer answer, QImage picture);

private:
    void start();
    void request(const TileKey& key, const QUrl& url, bool isDark, int redirects);
    [[nodiscard]] bool mayFollow(const QUrl& from, const QUrl& target) const;
    [[nodiscard]] TileAnswer judge(QNetworkReply* reply, QImage& picture) const;

    TileFetcherSettings m_settings;
    std::shared_ptr<const std::atomic<bool>> m_isAllowed;
    QNetworkAccessManager* m_network = nullptr;
    QNetworkDiskCache* m_cache = nullptr;
};

} // namespace nightjar
