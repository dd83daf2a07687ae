// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/MainThread.h"
#include "platform/Scheduler.h"
#include "platform/linux/BackgroundThread.h"

#include <QDBusConnection>
#include <QObject>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace nightjar {

/// Opens a message bus in the background and keeps it: opening waits for the bus, for ever when it takes the
/// connection and says nothing. A bus that cannot be opened, or is lost later, is tried again by itself.
/// Main thread; no signal is sent inside a call.
class BusConnector final : public QObject {
    Q_OBJECT
public:
    /// Returns a new connection each time; called on a thread of its own.
    using OpenBus = std::function<QDBusConnection()>;

    static constexpr std::chrono::milliseconds firstRetry = std::chrono::seconds(5);
    static constexpr std::chrono::milliseconds lastRetry = std::chrono::minutes(5);

    BusConnector(MainThread& mainThread, Scheduler& scheduler, OpenBus openBus);
    ~BusConnector() override;

    /// Begins to open the bus and to keep it; nothing when that has begun.
    void open();
    /// The same, but does not wait for the time of the next try.
    void openNow();
    [[nodiscard]] bool isConnected() const { return m_bus.isConnected(); }
    /// Unconnected unless open.
    [[nodiscard]] const QDBusConnection& bus() const { return m_bus; }
    /// The same for a caller who cannot be told later: opens the bus at once and waits for it without running
    /// the event loop. `opened` and the others come afterwards as usual.
    [[nodiscard]] QDBusConnection busWithin(std::chrono::milliseconds limit);

    /// $DBUS_SYSTEM_BUS_ADDRESS as it is now, else the usual place.
    [[nodiscard]] static QDBusConnection openSystemBus();
    /// $DBUS_SESSION_BUS_ADDRESS as it is now, else "bus" in $XDG_RUNTIME_DIR.
    [[nodiscard]] static QDBusConnection openSessionBus();

Q_SIGNALS:
    void opened();
    /// A bus that was open has gone; what belonged to it is of no more use.
    void lost();
    /// A try to open the bus has failed.
    void failed();

private Q_SLOTS:
    void disconnected();

private:
    /// Shared with the opening thread, which may outlive us.
    struct Life {
        std::mutex mutex;
        std::condition_variable ended;
        std::optional<QDBusConnection> bus; ///< what the latest opening came to; guarded
        bool isOver = false;                ///< guarded; written on the main thread only
    };

    void startThread();
    void openingEnded(const QDBusConnection& bus);
    void forgetResult();
    void tryAgainLater();
    void close();

    MainThread& m_mainThread;
    Scheduler& m_scheduler;
    OpenBus m_openBus;
    QDBusConnection m_bus;
    bool m_isOpening = false;
    std::chrono::milliseconds m_retry = firstRetry;
    Timer m_nextTry;
    std::shared_ptr<Life> m_life = std::make_shared<Life>();
    BackgroundThread m_opener;
};

} // namespace nightjar
