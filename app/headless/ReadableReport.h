// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/BluetoothReport.h"
#include "app/headless/LineSink.h"
#include "app/headless/MeshReport.h"
#include "app/headless/NetworkReport.h"
#include "app/headless/ReadableLines.h"
#include "platform/NotificationCenter.h"
#include "platform/Scheduler.h"

#include <QObject>

#include <memory>

namespace nightjar::headless {

/// All controllers as lines for people: one per change and alert, with the time of day. Main thread. Alerts
/// are always printed, and so is what somebody wrote. Under a flood everything else is held to a number of
/// lines a second: states then come with their latest text, and the rest is only counted.
class ReadableReport : public QObject {
    Q_OBJECT
public:
    ReadableReport(NightjarModel& model, LineSink& output, Scheduler& scheduler);

    /// Prints the present state, and from now on each change, once per turn of the event loop.
    void start();
    void tell(const Notification& notification);
    /// Prints what has changed as far as the reader takes it; to be called when it has caught up.
    void flush();

private:
    void scheduleFlush();

    NightjarModel& m_model;
    Scheduler& m_scheduler;
    ReadableLines m_lines;
    std::unique_ptr<MeshReport> m_mesh;
    std::unique_ptr<BluetoothReport> m_bluetooth;
    std::unique_ptr<NetworkReport> m_network;
    bool m_scheduled = false;
};

} // namespace nightjar::headless
