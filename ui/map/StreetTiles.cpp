// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/StreetTiles.h"

#include <algorithm>
#include <utility>

namespace nightjar {

namespace {

constexpr int failuresUntilPause = 4;
constexpr int mostDoublings = 4;
constexpr std::chrono::hours missingTileTime{24};
constexpr qsizetype mostRemembered = 4096;
constexpr unsigned long farewellTime = 2'000; ///< milliseconds

} // namespace

StreetTiles::StreetTiles(StreetTilesSettings settings, QObject* parent)
    : QObject(parent),
      m_settings(std::move(settings)),
      m_queue(std::clamp(m_settings.maximumParallel, 1, 4)),
      m_isAllowed(std::make_shared<std::atomic<bool>>(false)),
      m_thread(std::make_unique<QThread>()),
      m_fetcher(new TileFetcher(m_settings.fetcher, m_isAllowed)) {
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &StreetTiles::retryDue);
    connect(m_fetcher, &TileFetcher::fetched, this, &StreetTiles::receive);
    connect(m_thread.get(), &QThread::finished, m_fetcher, &QObject::deleteLater);
    m_thread->setObjectName(QStringLiteral("street tiles"));
    m_fetcher->moveToThread(m_thread.get());
    m_thread->start();
}

StreetTiles::~StreetTiles() {
    m_isAllowed->store(false);
    disconnect(m_fetcher, nullptr, this, nullptr);
    m_thread->quit();
    if (!m_thread->wait(farewellTime))
        (void)m_thread.release(); // a disk that hangs
}

std::expected<void, QString> StreetTiles::check(const QString& urlTemplate) {
    for (const auto* part : {"{z}", "{x}", "{y}"})
        if (urlTemplate.count(QLatin1String(part)) != 1)
            return std::unexpected(
                QStringLiteral("The address of a tile server holds {z}, {x} and {y} once each."));
    QString example = urlTemplate;
    for (const auto* part : {"{z}", "{x}", "{y}"})
        example.replace(QLatin1String(part), QLatin1String("0"));
    if (example.contains(u'{') || !TileFetcher::isSafe(QUrl(example, QUrl::StrictMode)))
        return std::unexpected(QStringLiteral("The address of a tile server begins with https://."));
    return {};
}

void StreetTiles::allow(bool isAllowed) {
    if (m_isAllowed->exchange(isAllowed) == isAllowed)
        return;
    if (!isAllowed) {
        m_queue.clear();
        m_retry.stop();
        QMetaObject::invokeMethod(m_fetcher, &TileFetcher::abortAll, Qt::QueuedConnection);
    }
}

void StreetTiles::want(const TileKey& key, bool isDark) {
    if (!m_isAllowed->load())
        return;
    m_isDark = isDark;
    const Time now = m_settings.now();
    const Time notBefore = std::max(m_serverNotBefore, m_notBefore.value(key));
    if (now < notBefore) {
        awaken(notBefore);
        return;
    }
    m_queue.want(key);
    pump();
}

void StreetTiles::pump() {
    while (m_isAllowed->load() && m_settings.now() >= m_serverNotBefore) {
        const std::optional<TileKey> key = m_queue.start();
        if (!key)
            return;
        QMetaObject::invokeMethod(
            m_fetcher,
            [fetcher = m_fetcher, key = *key, url = urlOf(*key), isDark = m_isDark] {
                fetcher->fetch(key, url, isDark);
            },
            Qt::QueuedConnection);
    }
}

void StreetTiles::receive(const TileKey& key, bool isDark, TileAnswer answer, const QImage& picture) {
    m_queue.finish(key);
    if (!m_isAllowed->load())
        return;
    if (answer == TileAnswer::picture) {
        m_failuresInARow = 0;
        m_notBefore.remove(key);
        Q_EMIT arrived(key, isDark, picture);
    } else {
        backOff(key, answer);
    }
    pump();
}

void StreetTiles::backOff(const TileKey& key, TileAnswer answer) {
    const Time now = m_settings.now();
    if (m_notBefore.size() >= mostRemembered)
        m_notBefore.clear();
    if (answer == TileAnswer::missing) {
        m_notBefore.insert(key, now + missingTileTime);
        return;
    }
    m_notBefore.insert(key, now + m_settings.retryAfter);
    ++m_failuresInARow;
    if (answer == TileAnswer::refused)
        m_failuresInARow = std::max(m_failuresInARow, failuresUntilPause);
    if (m_failuresInARow >= failuresUntilPause) {
        const int doublings = std::min(m_failuresInARow - failuresUntilPause + 1, mostDoublings);
        m_serverNotBefore = now + m_settings.retryAfter * (1 << doublings);
        m_queue.clear();
    }
    awaken(std::max(m_serverNotBefore, m_notBefore.value(key)));
}

void StreetTiles::awaken(Time when) {
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(when - m_settings.now());
    if (wait < missingTileTime / 2 && !(m_retry.isActive() && m_retry.remainingTimeAsDuration() <= wait))
        m_retry.start(std::max(wait, std::chrono::milliseconds(1)));
}

QUrl StreetTiles::urlOf(const TileKey& key) const {
    QString url = m_settings.urlTemplate;
    url.replace(QLatin1String("{z}"), QString::number(key.zoom));
    url.replace(QLatin1String("{x}"), QString::number(key.column));
    url.replace(QLatin1String("{y}"), QString::number(key.row));
    return QUrl(url, QUrl::StrictMode);
}

} // namespace nightjar
