// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/NotificationCenter.h"
#include "platform/linux/BusConnector.h"
#include "platform/linux/FreedesktopNotificationCenter.h"

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

namespace nightjar {

/// The desktop's notifications over the session's bus, which is opened at the first use. What is posted until
/// then goes out when the bus is there; without a bus it is dropped. A bus that was lost is opened again at
/// the next use, if not before. Main thread.
class SessionNotificationCenter final : public QObject, public NotificationCenter {
    Q_OBJECT
public:
    SessionNotificationCenter(BusConnector& sessionBus, NotificationSettings settings);

    void requestPermission() override;
    void post(const Notification& notification) override;

private:
    using Job = std::function<void(NotificationCenter&)>;

    enum class Importance { usual, alarm };
    /// Too many jobs that wait for the bus are not kept, alarms always are.
    void use(Job job, Importance importance);
    void busOpened();
    void busLost();

    BusConnector& m_bus;
    NotificationSettings m_settings;
    std::vector<Job> m_waiting;
    std::unique_ptr<FreedesktopNotificationCenter> m_center;
};

} // namespace nightjar
