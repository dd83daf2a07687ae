// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/TileWorkers.h"

#include <QMetaObject>
#include <QMutexLocker>

#include <utility>

namespace nightjar {

namespace {

constexpr int idleTime = 5'000;     ///< milliseconds until an idle thread ends
constexpr int farewellTime = 2'000; ///< milliseconds

} // namespace

TileWorkers::TileWorkers(QObject& owner, int threads)
    : m_way(std::make_shared<Way>()), m_pool(std::make_unique<QThreadPool>()) {
    m_way->owner = &owner;
    m_pool->setMaxThreadCount(threads);
    m_pool->setExpiryTimeout(idleTime);
}

TileWorkers::~TileWorkers() {
    {
        const QMutexLocker lock(&m_way->mutex);
        m_way->owner = nullptr;
    }
    m_pool->clear();
    if (!m_pool->waitForDone(farewellTime))
        (void)m_pool.release();
}

void TileWorkers::run(std::function<Arrival()> work) {
    m_pool->start([way = m_way, work = std::move(work)] {
        Arrival arrival = work();
        const QMutexLocker lock(&way->mutex);
        if (way->owner)
            QMetaObject::invokeMethod(way->owner, std::move(arrival), Qt::QueuedConnection);
    });
}

} // namespace nightjar
