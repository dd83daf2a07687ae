// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/LogindWakeMonitor.h"

#include "platform/linux/BusCall.h"

#include <ctime>
#include <utility>

namespace nightjar {
namespace {

using namespace std::chrono_literals;

constexpr auto shortestSleep = 1s;
/// The notice is given once what runs on each wake has ended, which can take a while.
constexpr auto longestDelayOfNotice = 60s;

const auto service = QStringLiteral("org.freedesktop.login1");
const auto busService = QStringLiteral("org.freedesktop.DBus");
const auto busPath = QStringLiteral("/org/freedesktop/DBus");

std::chrono::nanoseconds readClock(clockid_t clock) {
    timespec time{};
    ::clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

SleepClocks SleepClocks::ofSystem() {
    return {.bootTime = [] { return readClock(CLOCK_BOOTTIME); },
            .monotonic = [] { return readClock(CLOCK_MONOTONIC); }};
}

LogindWakeMonitor::LogindWakeMonitor(BusConnector& systemBus, SleepClocks clocks)
    : m_bus(systemBus), m_clocks(std::move(clocks)), m_slept(m_clocks.bootTime() - m_clocks.monotonic()) {
    connect(&m_bus, &BusConnector::opened, this, &LogindWakeMonitor::listen);
    connect(&m_bus, &BusConnector::lost, this, [this] { m_owner.clear(); });
    if (m_bus.isConnected())
        listen();
}

void LogindWakeMonitor::setListener(std::function<void()> onWake) {
    m_onWake = std::move(onWake);
    if (m_onWake)
        m_bus.open();
}

void LogindWakeMonitor::check() {
    if (!hasSlept())
        return;
    m_shownAt = m_clocks.monotonic();
    tell();
}

bool LogindWakeMonitor::hasSlept() {
    const auto slept = m_clocks.bootTime() - m_clocks.monotonic();
    return slept - std::exchange(m_slept, slept) > shortestSleep;
}

void LogindWakeMonitor::tell() {
    if (m_onWake)
        m_onWake();
}

void LogindWakeMonitor::listen() {
    // Should it be in vain, the clocks still tell.
    QDBusConnection bus = m_bus.bus();
    bus.connect(busService, busPath, busService, QStringLiteral("NameOwnerChanged"), {service}, QString(),
                this, SLOT(nameOwnerChanged(QDBusMessage)));
    // Without the sender's name: given one, Qt asks the bus for its owner and waits for the answer.
    bus.connect(QString(), QStringLiteral("/org/freedesktop/login1"),
                QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("PrepareForSleep"), this,
                SLOT(prepareForSleep(QDBusMessage)));
    learnOwner();
}

void LogindWakeMonitor::learnOwner() {
    callLater(m_bus.bus(), *this,
              {.service = busService,
               .path = busPath,
               .interface = busService,
               .method = QStringLiteral("GetNameOwner"),
               .arguments = {service}},
              [this](const QDBusMessage& answer) {
                  if (answer.type() == QDBusMessage::ReplyMessage && m_owner.isEmpty())
                      m_owner = answer.arguments().value(0).toString();
              });
}

void LogindWakeMonitor::nameOwnerChanged(const QDBusMessage& signal) {
    m_owner = signal.arguments().value(2).toString();
}

void LogindWakeMonitor::prepareForSleep(const QDBusMessage& signal) {
    // Anyone can send this signal.
    if (m_owner.isEmpty() || signal.service() != m_owner || signal.signature() != QLatin1String("b") ||
        signal.arguments().at(0).toBool())
        return;
    const auto shownAt = std::exchange(m_shownAt, std::nullopt);
    const bool wasShown = shownAt && m_clocks.monotonic() - *shownAt < longestDelayOfNotice;
    if (hasSlept() || !wasShown)
        tell();
}

} // namespace nightjar
