// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/NotificationCenter.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace nightjar {

/// How the program appears in its notifications.
struct NotificationSettings {
    QString applicationName = QStringLiteral("Nightjar");
    QString desktopEntry = QStringLiteral("nightjar"); ///< name of the .desktop file, without the ending
    /// A call without an answer is given up after this long.
    std::chrono::milliseconds answerTimeout{10'000};
    /// Plays our own sound where the desktop plays none; may be empty.
    std::function<void(NotificationSound)> playSound;
};

/// Notifications through org.freedesktop.Notifications on the given bus. Main thread; every call is
/// asynchronous.
///
/// The daemon gives each notification a number, known only after its answer, with which a later one replaces
/// it: per identifier one call is under way and the newest waits behind it. Numbers belong to one run of the
/// daemon and are forgotten with it.
class FreedesktopNotificationCenter final : public QObject, public NotificationCenter {
    Q_OBJECT
public:
    FreedesktopNotificationCenter(QDBusConnection bus, NotificationSettings settings);

    void requestPermission() override;
    void post(const Notification& notification) override;

    [[nodiscard]] bool isConnected() const { return m_bus.isConnected(); }
    /// How many calls wait for their answer.
    [[nodiscard]] std::size_t callsUnderWay() const { return m_callsUnderWay; }
    /// How many identifiers are known; bounded, for months of running.
    [[nodiscard]] std::size_t rememberedCount() const { return m_posted.size(); }
    static constexpr std::size_t maximumRemembered = 1'000;

private Q_SLOTS:
    void nameOwnerChanged(const QDBusMessage& signal);
    void notificationClosed(const QDBusMessage& signal);

private:
    struct Posted {
        std::uint32_t number = 0; ///< the daemon's; 0 = none
        std::uint64_t turn = 0;   ///< of the latest post; the lowest is forgotten first
        bool underWay = false;
        std::optional<Notification> next;
    };
    using Answered = std::function<void(const QDBusMessage&)>;

    [[nodiscard]] Posted* remember(const Notification& notification);
    void forgetOldest();
    void whenCapabilitiesAreKnown(std::function<void()> job);
    void askCapabilities();
    void capabilitiesAnswered(const QDBusMessage& answer, std::uint64_t daemon);
    void begin(Posted& posted, const Notification& notification);
    void send(const Notification& notification);
    void notifyAnswered(const Notification& notification, const QString& destination,
                        const QDBusMessage& answer);
    [[nodiscard]] bool isFromCurrentDaemon(const QDBusMessage& message);
    void daemonChanged(std::optional<QString> owner);
    void call(const QString& destination, const QString& method, const QVariantList& arguments,
              Answered answered);

    QDBusConnection m_bus;
    NotificationSettings m_settings;
    std::map<std::string, Posted> m_posted;
    std::uint64_t m_turns = 0;
    std::optional<QString> m_owner; ///< the daemon's unique name; empty = gone, absent = not known yet
    std::uint64_t m_daemons = 0;    ///< counts the changes of the owner
    std::optional<QStringList> m_capabilities;
    bool m_askingCapabilities = false;
    std::size_t m_callsUnderWay = 0;
    std::vector<std::function<void()>> m_waiting; ///< for the capabilities
};

} // namespace nightjar
