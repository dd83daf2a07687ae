// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Scheduler.h"
#include "platform/linux/BluezSettings.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <cstdint>
#include <functional>

namespace nightjar {

class BusConnector;

/// The Bluetooth daemon behind the bus: finds it, hears its signals and nobody else's, calls it, and notices
/// when it goes or hangs. Main thread; nothing here waits, and no handler is called inside a call.
class BluezDaemon final : public QObject {
    Q_OBJECT
public:
    struct Handlers {
        /// There is a daemon to talk to, a new one or one that had hung. Nothing that was known holds.
        std::function<void()> appeared{};
        /// It has gone, it hangs, or the bus has. Answers that are still missing never come.
        std::function<void()> vanished{};
        // Signals, with the arguments that they should have.
        std::function<void(const QDBusMessage&)> interfacesAdded{};
        std::function<void(const QDBusMessage&)> interfacesRemoved{};
        std::function<void(const QDBusMessage&)> deviceChanged{};
        std::function<void(const QDBusMessage&)> adapterChanged{};
    };
    using Answered = std::function<void(const QDBusMessage&)>;

    BluezDaemon(BusConnector& connector, Scheduler& scheduler, const BluezSettings& settings,
                Handlers handlers);

    /// Later calls `answered` with the reply or the error, unless the daemon vanishes before. Without a
    /// daemon nothing happens.
    void call(const QString& path, const QString& interface, const QString& method,
              const QVariantList& arguments, Answered answered);
    /// A call whose answer is of no interest.
    void send(const QString& path, const QString& interface, const QString& method);

    /// Whether the daemon's life matters now: it is asked when it says nothing.
    void setWatched(bool isWatched);
    /// The daemon gave no answer where one was due: it counts as hanging until it answers.
    void suspect();
    /// Whether it has said anything in the last second; if not, it is asked.
    [[nodiscard]] bool isResponsive();
    /// When it last said anything.
    [[nodiscard]] SteadyTime lastHeard() const { return m_lastHeard; }

private Q_SLOTS:
    void busOpened();
    void busLost();
    void nameOwnerChanged(const QDBusMessage& signal);
    void interfacesAdded(const QDBusMessage& signal);
    void interfacesRemoved(const QDBusMessage& signal);
    void deviceChanged(const QDBusMessage& signal);
    void adapterChanged(const QDBusMessage& signal);

private:
    [[nodiscard]] bool subscribe();
    void askForOwner();
    void setOwner(const QString& owner);
    void vanish();
    [[nodiscard]] bool accepts(const QDBusMessage& signal, const char* signature);
    void callService(const QString& destination, const QDBusMessage& message,
                     std::chrono::milliseconds timeout, Answered answered);
    [[nodiscard]] QDBusMessage message(const QString& path, const QString& interface,
                                       const QString& method) const;
    void lookAtPulse();
    void ping();
    void pingAnswered(bool isAlive);
    void pingLater(std::chrono::milliseconds delay);

    BusConnector& m_connector;
    Scheduler& m_scheduler;
    const BluezSettings& m_settings;
    Handlers m_handlers;
    QString m_owner; ///< unique name; empty = no daemon
    bool m_hangs = false;
    bool m_isWatched = false;
    bool m_isPinging = false;
    std::uint64_t m_epoch = 0; ///< answers of an earlier one are dropped
    SteadyTime m_lastHeard{};
    Timer m_pulse;
    Timer m_ownerRetry;
};

} // namespace nightjar
