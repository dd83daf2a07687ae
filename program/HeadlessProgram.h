// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/CommandLine.h"
#include "app/headless/JsonLinesSession.h"
#include "app/headless/LineInput.h"
#include "app/headless/LineOutput.h"
#include "app/headless/ReadableReport.h"
#include "app/headless/ReportingNotificationCenter.h"
#include "app/mesh/NightjarModel.h"
#include "platform/PlatformServices.h"
#include "platform/linux/SteadyPollClock.h"

#include <QObject>

#include <memory>
#include <optional>

namespace nightjar {

/// Whether notifications are also posted to the desktop.
enum class Desktop { used, leftAlone };

/// The program without a window: the controllers, and standard input and output to tell them. Main thread. It
/// asks the event loop to quit when the input ends (JSON lines) or nobody reads the output any more.
class HeadlessProgram : public QObject {
    Q_OBJECT
public:
    HeadlessProgram(const headless::CommandLine& commandLine, const PlatformServices& platform,
                    Desktop desktop);
    ~HeadlessProgram() override;

    [[nodiscard]] NightjarModel& model() { return m_model; }
    void start();
    /// Prints what is left to print. The exit status of the program.
    [[nodiscard]] int finish();

private:
    void startJsonLines();
    void startReadable();
    void outputLost(const QString& sentence);

    headless::CommandLine m_commandLine;
    SteadyPollClock m_clock;
    headless::ReportingNotificationCenter m_notifications;
    PlatformServices m_platform;
    NightjarModel m_model;
    headless::LineOutput m_output;
    std::optional<headless::JsonLinesSession> m_session;
    std::optional<headless::LineInput> m_input;
    std::optional<headless::ReadableReport> m_report;
    int m_exitStatus = 0;
};

} // namespace nightjar
