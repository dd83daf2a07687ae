// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/MainThread.h"
#include "platform/NotificationCenter.h"
#include "platform/linux/FreedesktopNotificationCenter.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace nightjar {

/// The desktop's notifications over a bus that is opened at the first use, in the background: opening waits
/// for the bus, for ever when it takes the connection and says nothing. What is posted meanwhile goes out
/// when the bus is there; without a bus it is dropped. A bus that was lost is opened again at the next use.
/// Main thread. The destructor waits a second for a bus that is being opened, then leaves its thread behind.
class SessionNotificationCenter final : public NotificationCenter {
public:
    /// Returns a new connection each time; called on a thread of its own.
    using OpenBus = std::function<QDBusConnection()>;

    SessionNotificationCenter(MainThread& mainThread, OpenBus openBus, NotificationSettings settings);
    ~SessionNotificationCenter() override;
    SessionNotificationCenter(const SessionNotificationCenter&) = delete;
    SessionNotificationCenter& operator=(const SessionNotificationCenter&) = delete;

    void requestPermission() override;
    void post(const Notification& notification) override;

    /// Whether a thread was left behind, which would keep the process from ending in the usual way.
    [[nodiscard]] static bool hasLeftThreadBehind();

    /// The bus of the user's session.
    [[nodiscard]] static QDBusConnection openSessionBus();

private:
    using Job = std::function<void(NotificationCenter&)>;
    /// What the opening thread shares with us; it may outlive us.
    struct Opening {
        std::mutex mutex;
        std::condition_variable ended;
        bool hasEnded = false;
        bool isGivenUp = false;
    };

    enum class Importance { usual, alarm };
    /// Too many jobs that wait for the bus are not kept, alarms always are.
    void use(Job job, Importance importance);
    void open();
    void opened(const QDBusConnection& bus);
    void close();
    void giveUpOpening();

    MainThread& m_mainThread;
    OpenBus m_openBus;
    NotificationSettings m_settings;
    std::vector<Job> m_waiting;
    bool m_opening = false;
    QString m_busName;
    std::unique_ptr<FreedesktopNotificationCenter> m_center;
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
    std::shared_ptr<Opening> m_openingState;
    std::thread m_opener;
};

} // namespace nightjar
