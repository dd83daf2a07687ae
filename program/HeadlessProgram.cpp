// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "program/HeadlessProgram.h"

#include "app/headless/BluetoothTable.h"
#include "app/headless/MeshTable.h"
#include "app/headless/NetworkTable.h"
#include "radio/MeshRadio.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <chrono>
#include <iostream>
#include <utility>
#include <vector>

#include <sysexits.h>
#include <unistd.h>

namespace nightjar {
namespace {

/// How long a reader that takes nothing holds up the end of the program.
constexpr std::chrono::milliseconds patience{2000};

} // namespace

HeadlessProgram::HeadlessProgram(const headless::CommandLine& commandLine, const PlatformServices& platform,
                                 Desktop desktop)
    : m_commandLine(commandLine),
      m_notifications(desktop == Desktop::used ? &platform.notifications : nullptr),
      m_platform(platform.with(m_notifications)),
      m_model(m_platform, std::make_unique<MeshRadio>(platform.host, platform.mainThread, m_clock)),
      m_output(STDOUT_FILENO) {
    connect(&m_output, &headless::LineOutput::lost, this, &HeadlessProgram::outputLost);
}

HeadlessProgram::~HeadlessProgram() {
    // The model goes after those who would tell it, so its last notifications have no reporter any more.
    m_notifications.setReporter({});
}

void HeadlessProgram::start() {
    if (m_commandLine.jsonLines)
        startJsonLines();
    else
        startReadable();
    if (m_commandLine.watches.contains(headless::Watch::bluetooth))
        m_model.bluetoothTrackers().startScanning();
    if (m_commandLine.watches.contains(headless::Watch::network))
        m_model.localNetwork().start();
    m_output.writeOut();
}

void HeadlessProgram::startJsonLines() {
    std::vector<headless::ControllerTable> tables;
    tables.push_back(headless::meshTable(m_model));
    tables.push_back(headless::bluetoothTable(m_model.bluetoothTrackers()));
    tables.push_back(headless::networkTable(m_model.localNetwork()));
    auto& session = m_session.emplace(std::move(tables), m_output);
    m_notifications.setReporter([&session](const Notification& notification) { session.tell(notification); });

    // While the reader is behind, no further operations are taken: their answers would pile up.
    const auto pauseWhenFull = [this] {
        if (m_output.isFull())
            m_input->setPaused(true);
    };
    headless::LineInput::Listener listener;
    listener.onLine = [&session, pauseWhenFull](std::string_view line) {
        session.handle(line);
        pauseWhenFull();
    };
    listener.onTooLongLine = [&session, pauseWhenFull] {
        session.refuseTooLongLine();
        pauseWhenFull();
    };
    listener.onEnd = [] { QCoreApplication::quit(); };
    auto& input = m_input.emplace(STDIN_FILENO, std::move(listener));
    connect(&m_output, &headless::LineOutput::drained, &session, [&session, &input] {
        input.setPaused(false);
        session.flush();
    });
    session.start();
    input.start();
}

void HeadlessProgram::startReadable() {
    auto& report = m_report.emplace(m_model, m_output, m_platform.scheduler);
    m_notifications.setReporter([&report](const Notification& notification) { report.tell(notification); });
    connect(&m_output, &headless::LineOutput::drained, &report, [&report] { report.flush(); });
    report.start();
}

void HeadlessProgram::outputLost(const QString& sentence) {
    // Nobody reads any more. What goes wrong otherwise, such as a full disk, must not look like an orderly
    // end.
    if (!sentence.isEmpty()) {
        std::cerr << "Standard output cannot be written: " << sentence.toStdString() << '.' << std::endl;
        m_exitStatus = EX_IOERR;
    }
    // Later, since the event loop may not have begun.
    QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
}

int HeadlessProgram::finish() {
    if (m_session)
        m_session->flush();
    if (m_report)
        m_report->flush();
    m_output.finish(patience);
    return m_exitStatus;
}

} // namespace nightjar
