// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/TileFetcher.h"

#include "ui/map/TilePicture.h"

#include <QDateTime>
#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkDiskCache>
#include <QNetworkReply>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace nightjar {

namespace {

constexpr qint64 mostOnDisk = 100 << 20;
constexpr int mostRedirects = 3;

/// Keeps pictures only, and keeps them for a while even where the server would have them fetched again.
class TileDiskCache final : public QNetworkDiskCache {
public:
    TileDiskCache(const TileFetcherSettings& settings, QObject* parent)
        : QNetworkDiskCache(parent), m_minimumAge(settings.minimumAge) {
        setCacheDirectory(settings.cacheFolder);
        setMaximumCacheSize(mostOnDisk);
    }

    QIODevice* prepare(const QNetworkCacheMetaData& metaData) override {
        QNetworkCacheMetaData::RawHeaderList kept;
        bool isPicture = false;
        for (const auto& [name, value] : metaData.rawHeaders()) {
            const QByteArray key = name.toLower();
            if (key == "content-type")
                isPicture = value.startsWith("image/");
            if (key == "content-type" || key == "etag" || key == "last-modified" || key == "content-length")
                kept.append({name, value});
        }
        const int status = metaData.attributes().value(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        if (!isPicture || status != 200)
            return nullptr;

        QNetworkCacheMetaData ours = metaData;
        ours.setRawHeaders(kept);
        ours.setSaveToDisk(true);
        const QDateTime least = QDateTime::currentDateTimeUtc().addSecs(m_minimumAge.count());
        const QDateTime told = metaData.expirationDate();
        ours.setExpirationDate(told.isValid() ? std::max(told, least) : least);
        return QNetworkDiskCache::prepare(ours);
    }

private:
    std::chrono::seconds m_minimumAge;
};

bool isLoopback(const QUrl& url) {
    return url.host() == QLatin1String("localhost") || QHostAddress(url.host()).isLoopback();
}

} // namespace

TileFetcher::TileFetcher(TileFetcherSettings settings, std::shared_ptr<const std::atomic<bool>> isAllowed)
    : m_settings(std::move(settings)), m_isAllowed(std::move(isAllowed)) {}

TileFetcher::~TileFetcher() = default;

bool TileFetcher::isSafe(const QUrl& url) {
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == QLatin1String("https") ||
            (url.scheme() == QLatin1String("http") && isLoopback(url)));
}

void TileFetcher::start() {
    m_network = new QNetworkAccessManager(this);
    m_cache = new TileDiskCache(m_settings, m_network);
    m_network->setCache(m_cache);
}

void TileFetcher::fetch(const TileKey& key, const QUrl& url, bool isDark) {
    if (!m_isAllowed->load() || !isSafe(url)) {
        Q_EMIT fetched(key, isDark, TileAnswer::failed, {});
        return;
    }
    if (!m_network)
        start();
    request(key, url, isDark, 0);
}

void TileFetcher::request(const TileKey& key, const QUrl& url, bool isDark, int redirects) {
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::UserAgentHeader, m_settings.userAgent);
    request.setRawHeader("Accept", "image/png,image/webp,image/jpeg");
    request.setRawHeader("Accept-Encoding", "identity"); // nothing is unpacked before its size is known
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);

    QNetworkReply* reply = m_network->get(request);
    reply->setReadBufferSize(TilePicture::maximumBytes + 1);
    QTimer::singleShot(m_settings.timeout, reply, &QNetworkReply::abort);
    connect(reply, &QNetworkReply::readyRead, reply, [reply] {
        if (reply->bytesAvailable() > TilePicture::maximumBytes)
            reply->abort();
    });
    connect(reply, &QNetworkReply::finished, this, [this, reply, key, isDark, redirects] {
        reply->deleteLater();
        const QUrl location = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
        const QUrl target = reply->url().resolved(location);
        if (!location.isEmpty() && redirects < mostRedirects && mayFollow(reply->url(), target))
            return this->request(key, target, isDark, redirects + 1);
        QImage picture;
        const TileAnswer answer = judge(reply, picture);
        if (isDark && answer == TileAnswer::picture)
            picture = TilePicture::forNight(std::move(picture));
        Q_EMIT fetched(key, isDark, answer, std::move(picture));
    });
}

/// The same kind of road, and never from outside to a service of this computer.
bool TileFetcher::mayFollow(const QUrl& from, const QUrl& target) const {
    return m_isAllowed->load() && isSafe(target) && target.scheme() == from.scheme() &&
           (isLoopback(from) || !isLoopback(target));
}

TileAnswer TileFetcher::judge(QNetworkReply* reply, QImage& picture) const {
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status == 404 || status == 410 || status == 204)
        return TileAnswer::missing;
    if (status == 403 || status == 418 || status == 429 || status >= 500)
        return TileAnswer::refused;
    if (reply->error() != QNetworkReply::NoError || status != 200)
        return TileAnswer::failed;
    if (auto decoded = TilePicture::decode(reply->readAll())) {
        picture = std::move(*decoded);
        return TileAnswer::picture;
    }
    // Such as the log-in page of a guest network: it must not stay in place of the tile.
    m_cache->remove(reply->url());
    m_cache->remove(reply->request().url());
    return TileAnswer::failed;
}

void TileFetcher::abortAll() {
    for (QNetworkReply* reply : findChildren<QNetworkReply*>())
        reply->abort();
}

} // namespace nightjar
