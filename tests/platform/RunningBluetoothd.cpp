// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/RunningBluetoothd.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/prctl.h>

namespace nightjar {

RunningBluetoothd::RunningBluetoothd(const QString& busAddress) {
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // A test that crashes leaves no daemon behind.
    m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    m_process.start(QStringLiteral(NIGHTJAR_STAND_IN_BLUETOOTHD), {busAddress});
    EXPECT_TRUE(m_process.waitForStarted(10'000)) << m_process.errorString().toStdString();
}

RunningBluetoothd::~RunningBluetoothd() {
    kill();
}

std::string RunningBluetoothd::tell(const std::string& command) {
    constexpr int limit = 120'000;
    m_process.write(QByteArray::fromStdString(command + '\n'));
    QElapsedTimer waited;
    waited.start();
    while (!m_process.canReadLine() && waited.elapsed() < limit && m_process.state() == QProcess::Running)
        m_process.waitForReadyRead(limit);
    const auto answer = m_process.readLine().trimmed().toStdString();
    EXPECT_TRUE(answer.starts_with("ok")) << command << ": " << answer;
    return answer.size() > 3 ? answer.substr(3) : std::string();
}

std::string RunningBluetoothd::encoded(const std::string& word) {
    return QByteArray::fromStdString(word).toPercentEncoding().toStdString();
}

void RunningBluetoothd::kill() {
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.kill();
    m_process.waitForFinished();
}

void RunningBluetoothd::freeze() {
    ::kill(static_cast<pid_t>(m_process.processId()), SIGSTOP);
}

void RunningBluetoothd::thaw() {
    ::kill(static_cast<pid_t>(m_process.processId()), SIGCONT);
}

} // namespace nightjar
