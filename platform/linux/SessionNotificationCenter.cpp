// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/SessionNotificationCenter.h"

#include <atomic>
#include <chrono>
#include <system_error>
#include <utility>

namespace nightjar {
namespace {

constexpr std::size_t maximumWaiting = 1'000;
constexpr std::chrono::seconds patienceAtEnd{1};
std::atomic<bool> leftThreadBehind = false;

} // namespace

SessionNotificationCenter::SessionNotificationCenter(MainThread& mainThread, OpenBus openBus,
                                                     NotificationSettings settings)
    : m_mainThread(mainThread), m_openBus(std::move(openBus)), m_settings(std::move(settings)) {}

SessionNotificationCenter::~SessionNotificationCenter() {
    giveUpOpening();
    close();
}

bool SessionNotificationCenter::hasLeftThreadBehind() {
    return leftThreadBehind;
}

void SessionNotificationCenter::giveUpOpening() {
    if (!m_opener.joinable())
        return;
    std::unique_lock lock(m_openingState->mutex);
    const bool ended =
        m_openingState->ended.wait_for(lock, patienceAtEnd, [this] { return m_openingState->hasEnded; });
    m_openingState->isGivenUp = true;
    lock.unlock();
    if (ended)
        return m_opener.join();
    leftThreadBehind = true;
    m_opener.detach();
}

QDBusConnection SessionNotificationCenter::openSessionBus() {
    // A name is bound to its first connection even when that is dead, so each one gets a new name. The
    // address is looked up here because the library below remembers the first one for as long as the process
    // runs.
    static std::atomic<int> opened = 0;
    const auto name = QStringLiteral("nightjar-notifications-%1").arg(++opened);
    const auto address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    return address.isEmpty() ? QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)
                             : QDBusConnection::connectToBus(address, name);
}

void SessionNotificationCenter::requestPermission() {
    use([](NotificationCenter& center) { center.requestPermission(); }, Importance::usual);
}

void SessionNotificationCenter::post(const Notification& notification) {
    const bool isAlarm = notification.sound == NotificationSound::critical;
    use([notification](NotificationCenter& center) { center.post(notification); },
        isAlarm ? Importance::alarm : Importance::usual);
}

void SessionNotificationCenter::use(Job job, Importance importance) {
    if (m_center && m_center->isConnected())
        return job(*m_center);
    if (m_waiting.size() < maximumWaiting || importance == Importance::alarm)
        m_waiting.push_back(std::move(job));
    if (!m_opening)
        open();
}

void SessionNotificationCenter::open() {
    close();
    m_opening = true;
    if (m_opener.joinable())
        m_opener.join();
    m_openingState = std::make_shared<Opening>();
    auto work = [this, openBus = m_openBus, &mainThread = m_mainThread, alive = std::weak_ptr(m_alive),
                 state = m_openingState] {
        auto bus = openBus();
        const std::scoped_lock lock(state->mutex);
        state->hasEnded = true;
        state->ended.notify_all();
        if (state->isGivenUp)
            return;
        mainThread.post([this, alive, bus] {
            if (!alive.expired())
                opened(bus);
        });
    };
    try {
        m_opener = std::thread(std::move(work));
    } catch (const std::system_error&) {
        opened(QDBusConnection(QString()));
    }
}

void SessionNotificationCenter::opened(const QDBusConnection& bus) {
    m_opening = false;
    m_busName = bus.name();
    const auto waiting = std::exchange(m_waiting, {});
    if (!bus.isConnected())
        return;
    m_center = std::make_unique<FreedesktopNotificationCenter>(bus, m_settings);
    for (const auto& job : waiting)
        job(*m_center);
}

void SessionNotificationCenter::close() {
    m_center.reset();
    if (!m_busName.isEmpty())
        QDBusConnection::disconnectFromBus(std::exchange(m_busName, QString()));
}

} // namespace nightjar
