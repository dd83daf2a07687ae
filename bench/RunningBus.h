// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDBusConnection>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/prctl.h>

/// Programs of other processes that a benchmark talks with. Whatever cannot be started ends the benchmark.
namespace nightjar::bench {

template <class Condition>
void runEventsUntil(const Condition& condition) {
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (condition())
            loop.quit();
    });
    look.start(50);
    loop.exec();
}

class RunningProgram {
public:
    void start(const QString& program, const QStringList& arguments) {
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        m_process.start(program, arguments);
        if (!m_process.waitForStarted())
            std::puts(m_process.errorString().toUtf8().constData()), std::exit(1);
    }
    ~RunningProgram() {
        m_process.kill();
        m_process.waitForFinished();
    }

    void write(const std::string& line) { m_process.write(QByteArray::fromStdString(line + '\n')); }
    [[nodiscard]] bool hasLine() const { return m_process.canReadLine(); }
    /// Waits for it.
    [[nodiscard]] QString line() {
        while (!hasLine() && m_process.waitForReadyRead())
            ;
        return QString::fromUtf8(m_process.readLine()).trimmed();
    }

private:
    QProcess m_process;
};

/// A message bus without limits.
class RunningBus {
public:
    RunningBus() {
        const QString path = m_folder.filePath(QStringLiteral("bus.conf"));
        QFile file(path);
        const auto text = QStringLiteral("<busconfig><type>session</type><listen>unix:dir=%1</listen>"
                                         "<auth>EXTERNAL</auth><policy context=\"default\">"
                                         "<allow send_destination=\"*\" eavesdrop=\"true\"/>"
                                         "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>")
                              .arg(m_folder.path());
        if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0 || !file.flush())
            std::puts("no temporary file"), std::exit(1);
        m_program.start(QStringLiteral("dbus-daemon"),
                        {QStringLiteral("--config-file=") + path, QStringLiteral("--nofork"),
                         QStringLiteral("--print-address")});
        m_address = m_program.line();
    }

    [[nodiscard]] const QString& address() const { return m_address; }
    [[nodiscard]] QDBusConnection connect() const {
        return QDBusConnection::connectToBus(m_address, QStringLiteral("bench"));
    }

private:
    QTemporaryDir m_folder;
    RunningProgram m_program;
    QString m_address;
};

} // namespace nightjar::bench
