// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Scheduler.h"
#include "platform/linux/AvahiSettings.h"

#include <QDBusMessage>
#include <QObject>

#include <cstdint>
#include <functional>

namespace nightjar {

class BusConnector;

/// The daemon of Avahi behind the bus: finds it, hears its signals and nobody else's, calls it, and notices
/// when it goes or hangs. Main thread; nothing here waits, and no handler is called inside a call.
class AvahiDaemon final : public QObject {
    Q_OBJECT
public:
    enum class Presence {
        unknown, ///< not found out yet
        absent,
        refused, ///< the bus does not let us at it
        hanging,
        present,
    };
    struct Handlers {
        /// The presence has changed. What was known of the daemon no longer holds, and answers that are still
        /// missing never come.
        std::function<void()> presenceChanged{};
        /// A signal of a service browser.
        std::function<void(const QDBusMessage&)> signalled{};
    };
    using Answered = std::function<void(const QDBusMessage&)>;

    AvahiDaemon(BusConnector& connector, Scheduler& scheduler, const AvahiSettings& settings,
                Handlers handlers);

    /// Whether the daemon is needed now: the bus is opened, the daemon is started if the bus can do that, now
    /// and then until it is there, and it is asked now and then whether it lives.
    void setNeeded(bool isNeeded);
    [[nodiscard]] Presence presence() const { return m_presence; }
    /// What the bus said when it could not start the daemon.
    [[nodiscard]] const QString& problem() const { return m_problem; }

    /// Later calls `answered` with the reply or the error, unless the presence changes before. Without a
    /// daemon nothing happens.
    void call(const QString& path, const QString& interface, const QString& method,
              const QVariantList& arguments, std::chrono::milliseconds limit, Answered answered);
    /// A call whose answer is of no interest.
    void send(const QString& path, const QString& interface, const QString& method);
    /// The daemon gave no answer where one was due: it counts as hanging until it answers.
    void suspect();

    /// A policy forbids it.
    [[nodiscard]] static bool isRefusal(const QDBusMessage& answer);

private Q_SLOTS:
    void busOpened();
    void busLost();
    void busFailed();
    void nameOwnerChanged(const QDBusMessage& signal);
    void browserSignalled(const QDBusMessage& signal);

private:
    [[nodiscard]] bool subscribe();
    void askForOwner();
    void startDaemon();
    void startAnswered(const QDBusMessage& answer);
    void setOwner(const QString& owner);
    void setPresence(Presence presence);
    void callService(const QString& destination, const QString& path, const QString& interface,
                     const QString& method, const QVariantList& arguments, std::chrono::milliseconds limit,
                     Answered answered);
    void pingAfter(std::chrono::milliseconds delay);
    void ping();
    void pingEnded(bool isAlive);

    BusConnector& m_connector;
    Scheduler& m_scheduler;
    const AvahiSettings& m_settings;
    Handlers m_handlers;
    Presence m_presence = Presence::unknown;
    QString m_owner; ///< unique name; empty = no daemon
    QString m_problem;
    bool m_isNeeded = false;
    bool m_isStarting = false; ///< the bus has been asked to
    std::uint64_t m_epoch = 0; ///< answers of an earlier one are dropped
    std::uint64_t m_pings = 0; ///< only the latest counts
    Timer m_pulse;
    Timer m_nextQuestion;
    Timer m_nextStart;
};

} // namespace nightjar
