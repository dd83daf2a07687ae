// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/FreedesktopNotificationCenter.h"

#include "platform/linux/BusCall.h"
#include "platform/linux/NotificationText.h"

#include <QVariantMap>

#include <algorithm>
#include <utility>

namespace nightjar {
namespace {

const auto service = QStringLiteral("org.freedesktop.Notifications");
const auto path = QStringLiteral("/org/freedesktop/Notifications");
const auto interface = QStringLiteral("org.freedesktop.Notifications");
const auto markupCapability = QStringLiteral("body-markup");
const auto soundCapability = QStringLiteral("sound");

QVariantMap hints(NotificationSound sound, const QString& desktopEntry) {
    const bool critical = sound == NotificationSound::critical;
    return {
        {QStringLiteral("desktop-entry"), desktopEntry},
        // A byte: daemons take no notice of any other integer.
        {QStringLiteral("urgency"), QVariant::fromValue<uchar>(critical ? 2 : 1)},
        {QStringLiteral("sound-name"),
         critical ? QStringLiteral("alarm-clock-elapsed") : QStringLiteral("message-new-instant")},
    };
}

} // namespace

FreedesktopNotificationCenter::FreedesktopNotificationCenter(QDBusConnection bus,
                                                             NotificationSettings settings)
    : m_bus(std::move(bus)), m_settings(std::move(settings)) {
    if (!m_bus.isConnected())
        return;
    const auto busService = QStringLiteral("org.freedesktop.DBus");
    m_bus.connect(busService, QStringLiteral("/org/freedesktop/DBus"), busService,
                  QStringLiteral("NameOwnerChanged"), {service}, QString(), this,
                  SLOT(nameOwnerChanged(QDBusMessage)));
    // Without the sender's name: given one, Qt asks the bus for its owner and waits for the answer.
    m_bus.connect(QString(), path, interface, QStringLiteral("NotificationClosed"), this,
                  SLOT(notificationClosed(QDBusMessage)));
}

/// The desktop asks nobody for leave; asking what the daemon can do wakes it if it is started on demand.
void FreedesktopNotificationCenter::requestPermission() {
    askCapabilities();
}

void FreedesktopNotificationCenter::post(const Notification& notification) {
    if (!m_bus.isConnected())
        return;
    Posted* posted = remember(notification);
    if (!posted)
        return;
    if (posted->underWay)
        posted->next = notification;
    else
        begin(*posted, notification);
}

/// Null when too many calls are under way to take another; an alarm is always taken.
FreedesktopNotificationCenter::Posted*
FreedesktopNotificationCenter::remember(const Notification& notification) {
    const std::string& identifier = notification.identifier;
    const bool isAlarm = notification.sound == NotificationSound::critical;
    if (!m_posted.contains(identifier) && m_posted.size() >= maximumRemembered)
        forgetOldest();
    if (!m_posted.contains(identifier) && m_posted.size() >= maximumRemembered && !isAlarm)
        return nullptr;
    Posted& posted = m_posted[identifier];
    posted.turn = ++m_turns;
    return &posted;
}

void FreedesktopNotificationCenter::forgetOldest() {
    const auto oldest = std::ranges::min_element(
        m_posted, {}, [](const auto& item) { return std::pair(item.second.underWay, item.second.turn); });
    if (!oldest->second.underWay)
        m_posted.erase(oldest);
}

void FreedesktopNotificationCenter::begin(Posted& posted, const Notification& notification) {
    posted.underWay = true;
    whenCapabilitiesAreKnown([this, notification] { send(notification); });
}

void FreedesktopNotificationCenter::whenCapabilitiesAreKnown(std::function<void()> job) {
    if (m_capabilities)
        return job();
    m_waiting.push_back(std::move(job));
    askCapabilities();
}

void FreedesktopNotificationCenter::askCapabilities() {
    if (m_askingCapabilities || !m_bus.isConnected())
        return;
    m_askingCapabilities = true;
    call(service, QStringLiteral("GetCapabilities"), {},
         [this, daemon = m_daemons](const QDBusMessage& answer) { capabilitiesAnswered(answer, daemon); });
}

void FreedesktopNotificationCenter::capabilitiesAnswered(const QDBusMessage& answer, std::uint64_t daemon) {
    m_askingCapabilities = false;
    if (answer.type() == QDBusMessage::ReplyMessage) {
        if (isFromCurrentDaemon(answer))
            m_capabilities = answer.arguments().value(0).toStringList();
    } else if (daemon == m_daemons && !m_capabilities) {
        // Escaped text is readable everywhere. The next daemon is asked again; this one is not waited for
        // twice.
        m_capabilities = QStringList{markupCapability};
    }
    for (const auto& job : std::exchange(m_waiting, {}))
        job();
}

void FreedesktopNotificationCenter::send(const Notification& notification) {
    const auto capabilities = m_capabilities.value_or(QStringList{markupCapability});
    const QString body = notificationBody(notification.body);
    const bool critical = notification.sound == NotificationSound::critical;
    const auto icon = critical ? QStringLiteral("dialog-warning") : QStringLiteral("dialog-information");
    const auto known = m_posted.find(notification.identifier);
    const QString destination = m_owner && !m_owner->isEmpty() ? *m_owner : service;

    call(destination, QStringLiteral("Notify"),
         {m_settings.applicationName, known == m_posted.end() ? 0u : known->second.number, icon,
          notificationTitle(notification.title),
          capabilities.contains(markupCapability) ? escapedAsMarkup(body) : body, QStringList(),
          hints(notification.sound, m_settings.desktopEntry), -1},
         [this, notification, destination](const QDBusMessage& answer) {
             notifyAnswered(notification, destination, answer);
         });
    if (m_settings.playSound && !capabilities.contains(soundCapability))
        m_settings.playSound(notification.sound);
}

void FreedesktopNotificationCenter::notifyAnswered(const Notification& notification,
                                                   const QString& destination, const QDBusMessage& answer) {
    const auto found = m_posted.find(notification.identifier);
    if (found == m_posted.end())
        return;
    Posted& posted = found->second;
    if (answer.type() == QDBusMessage::ReplyMessage && isFromCurrentDaemon(answer)) {
        posted.number = answer.arguments().value(0).toUInt();
    }
    const bool neverArrived = destination != service && isNobodyThere(answer);
    if (neverArrived && m_owner == destination)
        daemonChanged(std::nullopt);

    posted.underWay = false;
    const auto next = std::exchange(posted.next, std::nullopt);
    if (next)
        begin(posted, *next);
    else if (neverArrived)
        begin(posted, notification);
    else if (posted.number == 0)
        m_posted.erase(found);
}

/// An answer can still be on its way when its daemon has gone and another has taken over.
bool FreedesktopNotificationCenter::isFromCurrentDaemon(const QDBusMessage& message) {
    if (!m_owner)
        m_owner = message.service();
    return *m_owner == message.service();
}

void FreedesktopNotificationCenter::nameOwnerChanged(const QDBusMessage& signal) {
    const QString owner = signal.arguments().value(2).toString();
    if (m_owner != owner)
        daemonChanged(owner);
}

void FreedesktopNotificationCenter::daemonChanged(std::optional<QString> owner) {
    m_owner = std::move(owner);
    ++m_daemons;
    m_capabilities.reset();
    for (auto& [identifier, posted] : m_posted)
        posted.number = 0;
    std::erase_if(m_posted, [](const auto& item) { return !item.second.underWay; });
}

void FreedesktopNotificationCenter::notificationClosed(const QDBusMessage& signal) {
    const auto number = signal.arguments().value(0).toUInt();
    // Anyone can send this signal; who the daemon is, only its answers tell.
    if (number == 0 || m_owner != signal.service())
        return;
    const auto found =
        std::ranges::find(m_posted, number, [](const auto& item) { return item.second.number; });
    if (found == m_posted.end())
        return;
    found->second.number = 0;
    if (!found->second.underWay)
        m_posted.erase(found);
}

void FreedesktopNotificationCenter::call(const QString& destination, const QString& method,
                                         const QVariantList& arguments, Answered answered) {
    ++m_callsUnderWay;
    callLater(m_bus, *this,
              {.service = destination,
               .path = path,
               .interface = interface,
               .method = method,
               .arguments = arguments,
               .limit = m_settings.answerTimeout,
               .startsService = true},
              [this, answered = std::move(answered)](const QDBusMessage& answer) {
                  --m_callsUnderWay;
                  answered(answer);
              });
}

} // namespace nightjar
