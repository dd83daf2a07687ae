// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bench/RunningBus.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace nightjar::bench {

/// The stand-in for the Bluetooth daemon; its commands are listed in
/// tests/platform/StandInBluetoothdMain.cpp.
class RunningDaemon {
public:
    explicit RunningDaemon(const QString& busAddress) {
        m_program.start(QStringLiteral(NIGHTJAR_FLOOD_BLUETOOTHD), {busAddress});
    }

    /// Waits for the answer.
    void tell(const std::string& command) {
        ask(command);
        hasSucceeded(m_program.line());
    }
    void ask(const std::string& command) { m_program.write(command); }
    [[nodiscard]] bool hasAnswered() { return m_program.hasLine() && hasSucceeded(m_program.line()); }

private:
    static bool hasSucceeded(const QString& answer) {
        if (!answer.startsWith(QLatin1String("ok")))
            std::puts(answer.toUtf8().constData()), std::exit(1);
        return true;
    }

    RunningProgram m_program;
};

} // namespace nightjar::bench
