// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/ReadableReport.h"

#include "app/headless/ReadableText.h"

#include <QMetaObject>

namespace nightjar::headless {

ReadableReport::ReadableReport(NightjarModel& model, LineSink& output, Scheduler& scheduler)
    : m_model(model), m_scheduler(scheduler), m_lines(output, scheduler, [this] { flush(); }) {}

void ReadableReport::start() {
    const auto changed = [this] { scheduleFlush(); };
    m_mesh = std::make_unique<MeshReport>(m_model, m_scheduler, changed);
    m_bluetooth = std::make_unique<BluetoothReport>(m_model.bluetoothTrackers(), m_scheduler, changed);
    m_network = std::make_unique<NetworkReport>(m_model.localNetwork(), changed);
    flush();
}

void ReadableReport::scheduleFlush() {
    if (m_scheduled)
        return;
    m_scheduled = true;
    QMetaObject::invokeMethod(this, &ReadableReport::flush, Qt::QueuedConnection);
}

void ReadableReport::flush() {
    m_scheduled = false;
    m_lines.tellLeftOut();
    m_mesh->print(m_lines);
    m_bluetooth->print(m_lines);
    m_network->print(m_lines);
}

void ReadableReport::tell(const Notification& notification) {
    // A received message is printed as a message.
    if (notification.identifier.starts_with("message-"))
        return;
    m_lines.print("ALERT " + terminalSafe(notification.title) + ": " + terminalSafe(notification.body));
}

} // namespace nightjar::headless
