// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Scheduler.h"
#include "platform/linux/BluezSettings.h"

#include <QDBusMessage>
#include <QString>
#include <QVariantMap>

#include <cstddef>
#include <cstdint>
#include <functional>

namespace nightjar {

class BluezDaemon;

/// Our discovery session with the Bluetooth daemon: kept going for as long as it is wanted, whatever ends it.
/// Advertisements count only while it runs. Main thread.
class BluezDiscovery {
public:
    /// Why there is no discovery although one is wanted. It stays until a discovery runs again, or, once none
    /// is wanted, until the time of the next attempt.
    enum class Trouble { none, blind, denied };

    /// `troubleChanged` is called for each change of `trouble()` but those that `setAdapter` makes.
    BluezDiscovery(BluezDaemon& daemon, Scheduler& scheduler, const BluezSettings& settings,
                   std::function<void()> troubleChanged);
    ~BluezDiscovery();
    BluezDiscovery(const BluezDiscovery&) = delete;
    BluezDiscovery& operator=(const BluezDiscovery&) = delete;

    /// Wants a discovery. When one runs, the radio begins afresh and reports what it held back.
    void want();
    void unwant();
    /// Tries on in trouble, without anyone wanting the discovery, to find out when the trouble is over.
    void probe();
    /// A probe that has found the trouble over is ended.
    void endProbe();
    [[nodiscard]] bool isTrying() const { return m_wish != Wish::none; }

    /// Another adapter, or none (empty): the session has ended with the old one.
    void setAdapter(const QString& path);
    /// The daemon says that nobody looks for devices on the adapter.
    void reportedEnded();

    [[nodiscard]] bool isRunning() const { return m_session == Session::running; }
    [[nodiscard]] Trouble trouble() const { return m_trouble; }
    void advertisementCame(SteadyTime now) { m_lastAdvertisement = now; }

private:
    enum class Wish { none, probe, scan };
    enum class Session { none, starting, running, stopping };
    using Next = void (BluezDiscovery::*)(const QDBusMessage&);

    void pursue();
    void start();
    void stop();
    void refresh();
    void filterAnswered(const QDBusMessage& answer);
    void startAnswered(const QDBusMessage& answer);
    void stopAnswered(const QDBusMessage& answer);
    void refreshAnswered(const QDBusMessage& answer);
    void begun();
    void ended();
    void failed(const QString& error);
    void tryAfter(std::chrono::milliseconds delay);
    void lookForStall();
    void watchForBlindness();
    void setTrouble(Trouble trouble);
    void call(const QString& method, const QVariantList& arguments, Next next);
    [[nodiscard]] QVariantMap filter() const;

    BluezDaemon& m_daemon;
    Scheduler& m_scheduler;
    const BluezSettings& m_settings;
    std::function<void()> m_troubleChanged;
    QString m_adapter;
    Wish m_wish = Wish::none;
    Session m_session = Session::none;
    Trouble m_trouble = Trouble::none;
    std::uint64_t m_epoch = 0; ///< answers that belong to an earlier one are dropped
    std::size_t m_failures = 0;
    bool m_isOtherFilter = false;
    bool m_isRestartNext = false; ///< the next stall ends the session instead of changing the filter
    SteadyTime m_lastAdvertisement{};
    Timer m_retry;
    Timer m_blindness;
    Timer m_stall;
};

} // namespace nightjar
