// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/WakeMonitor.h"
#include "platform/linux/BusConnector.h"

#include <QDBusMessage>
#include <QObject>

#include <chrono>
#include <functional>
#include <optional>

namespace nightjar {

/// Two clocks of which only the first runs on while the computer sleeps.
struct SleepClocks {
    std::function<std::chrono::nanoseconds()> bootTime;
    std::function<std::chrono::nanoseconds()> monotonic;

    /// CLOCK_BOOTTIME and CLOCK_MONOTONIC.
    [[nodiscard]] static SleepClocks ofSystem();
};

/// Wakes by the notice of the login service (org.freedesktop.login1) and by the clocks, which also show a
/// sleep before the notice of it arrives, or where nobody gives notice. Main thread.
///
/// Both can show the same wake. A notice always counts, because on a computer without a clock of its own no
/// time is seen to pass in its sleep, except shortly after the clocks have shown a wake and nothing since.
class LogindWakeMonitor final : public QObject, public WakeMonitor {
    Q_OBJECT
public:
    explicit LogindWakeMonitor(BusConnector& systemBus, SleepClocks clocks = SleepClocks::ofSystem());

    void setListener(std::function<void()> onWake) override;
    void check() override;

private Q_SLOTS:
    void prepareForSleep(const QDBusMessage& signal);
    void nameOwnerChanged(const QDBusMessage& signal);

private:
    void listen();
    void learnOwner();
    /// Whether the computer has slept since the last look.
    [[nodiscard]] bool hasSlept();
    void tell();

    BusConnector& m_bus;
    SleepClocks m_clocks;
    std::function<void()> m_onWake;
    std::chrono::nanoseconds m_slept;                  ///< how far apart the clocks were at the last look
    std::optional<std::chrono::nanoseconds> m_shownAt; ///< when the clocks showed a wake without notice yet
    QString m_owner;                                   ///< the service's unique name; empty while unknown
};

} // namespace nightjar
