// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/BusConnector.h"

#include <QString>

#include <algorithm>
#include <atomic>
#include <utility>

namespace nightjar {
namespace {

QDBusConnection noBus() {
    return QDBusConnection(QString());
}

/// A name is bound to its first connection even when that is dead, so each one gets a new name. The address
/// is looked up here because the library below remembers the first one for as long as the process runs.
QDBusConnection openBus(QDBusConnection::BusType type, const char* addressVariable) {
    static std::atomic<int> opened = 0;
    const auto name = QStringLiteral("nightjar-%1").arg(++opened);
    const auto address = qEnvironmentVariable(addressVariable);
    return address.isEmpty() ? QDBusConnection::connectToBus(type, name)
                             : QDBusConnection::connectToBus(address, name);
}

} // namespace

BusConnector::BusConnector(MainThread& mainThread, Scheduler& scheduler, OpenBus openBus)
    : m_mainThread(mainThread), m_scheduler(scheduler), m_openBus(std::move(openBus)), m_bus(noBus()) {}

BusConnector::~BusConnector() {
    m_opener.finish();
    {
        const std::scoped_lock lock(m_life->mutex);
        m_life->isOver = true;
    }
    close();
}

QDBusConnection BusConnector::openSystemBus() {
    return openBus(QDBusConnection::SystemBus, "DBUS_SYSTEM_BUS_ADDRESS");
}

QDBusConnection BusConnector::openSessionBus() {
    return openBus(QDBusConnection::SessionBus, "DBUS_SESSION_BUS_ADDRESS");
}

void BusConnector::open() {
    if (!m_nextTry)
        openNow();
}

void BusConnector::openNow() {
    // A bus that was lost keeps its place until the loss has been told.
    if (m_isOpening || !m_bus.name().isEmpty())
        return;
    m_nextTry.cancel();
    startThread();
}

QDBusConnection BusConnector::busWithin(std::chrono::milliseconds limit) {
    openNow();
    if (!m_isOpening)
        return m_bus;
    std::unique_lock lock(m_life->mutex);
    m_life->ended.wait_for(lock, limit, [this] { return m_life->bus.has_value(); });
    return m_life->bus.value_or(noBus());
}

void BusConnector::startThread() {
    m_isOpening = true;
    forgetResult();
    auto end = [this, life = m_life](const QDBusConnection& bus) {
        if (!life->isOver)
            openingEnded(bus);
    };
    const bool hasThread =
        m_opener.start([openBus = m_openBus, &mainThread = m_mainThread, life = m_life, end] {
            auto bus = openBus();
            const std::scoped_lock lock(life->mutex);
            life->bus = bus;
            life->ended.notify_all();
            if (!life->isOver)
                mainThread.post([end, bus] { end(bus); });
        });
    if (!hasThread)
        m_mainThread.post([end] { end(noBus()); });
}

void BusConnector::openingEnded(const QDBusConnection& bus) {
    m_isOpening = false;
    forgetResult();
    m_bus = bus;
    // Listening comes before the look at the connection, so that no loss falls between the two.
    const bool listens = m_bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                                       QStringLiteral("org.freedesktop.DBus.Local"),
                                       QStringLiteral("Disconnected"), this, SLOT(disconnected()));
    if (!listens || !m_bus.isConnected()) {
        close();
        tryAgainLater();
        Q_EMIT failed();
        return;
    }
    m_retry = firstRetry;
    Q_EMIT opened();
}

/// As long as anyone keeps a bus, it stays open.
void BusConnector::forgetResult() {
    const std::scoped_lock lock(m_life->mutex);
    m_life->bus.reset();
}

void BusConnector::disconnected() {
    // The bus itself says nothing of the kind: only an end of the connection counts.
    if (m_bus.name().isEmpty() || m_bus.isConnected())
        return;
    close();
    tryAgainLater();
    Q_EMIT lost();
}

void BusConnector::tryAgainLater() {
    m_nextTry = m_scheduler.after(m_retry, [this] { openNow(); });
    m_retry = std::min(m_retry * 2, lastRetry);
}

void BusConnector::close() {
    const QString name = std::exchange(m_bus, noBus()).name();
    if (!name.isEmpty())
        QDBusConnection::disconnectFromBus(name);
}

} // namespace nightjar
