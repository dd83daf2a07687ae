// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/BusConnector.h"

#include "platform/linux/BusProbe.h"

#include <QString>

#include <algorithm>
#include <atomic>
#include <string>
#include <utility>

namespace nightjar {
namespace {

QDBusConnection noBus() {
    return QDBusConnection(QString());
}

/// The value of a variable; empty when it is not set.
std::string variable(const char* name) {
    return qEnvironmentVariable(name).toStdString();
}

/// A name is bound to its first connection even when that is dead, so each one gets a new name. The addresses
/// are looked up by us because the library below remembers the first one for as long as the process runs.
QDBusConnection openBus(const std::string& address) {
    static std::atomic<int> opened = 0;
    if (address.empty() || !busAnswers(address))
        return noBus();
    return QDBusConnection::connectToBus(QString::fromStdString(address),
                                         QStringLiteral("nightjar-%1").arg(++opened));
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
    const auto address = variable("DBUS_SYSTEM_BUS_ADDRESS");
    return openBus(address.empty() ? "unix:path=/run/dbus/system_bus_socket" : address);
}

QDBusConnection BusConnector::openSessionBus() {
    auto address = variable("DBUS_SESSION_BUS_ADDRESS");
    const auto folder = variable("XDG_RUNTIME_DIR");
    if (address.empty() && !folder.empty())
        address = "unix:path=" + folder + "/bus";
    return openBus(address);
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
