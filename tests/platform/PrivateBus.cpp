// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/PrivateBus.h"

#include <QDBusMessage>
#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <sys/prctl.h>

namespace nightjar {
namespace {

constexpr const char* configuration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir=%1</listen>
  <auth>EXTERNAL</auth>
  <servicedir>%1/services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

void write(const QString& path, const QString& text) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text.toUtf8());
}

} // namespace

PrivateBus::PrivateBus() {
    QDir(m_folder.path()).mkdir(QStringLiteral("services"));
    const auto file = m_folder.filePath(QStringLiteral("bus.conf"));
    write(file, QString::fromUtf8(configuration).arg(m_folder.path()));
    // A test that crashes leaves no daemon behind.
    m_daemon.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    m_daemon.start(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--config-file=") + file, QStringLiteral("--nofork"),
                    QStringLiteral("--print-address")});
    EXPECT_TRUE(m_daemon.waitForReadyRead(10'000)) << m_daemon.errorString().toStdString();
    m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
}

PrivateBus::~PrivateBus() {
    end();
}

QDBusConnection PrivateBus::connect() const {
    static std::atomic<int> opened = 0;
    return QDBusConnection::connectToBus(m_address, QStringLiteral("private-%1").arg(++opened));
}

void PrivateBus::makeActivatable(const QString& name, const QString& command) {
    write(m_folder.filePath(QStringLiteral("services/") + name + QStringLiteral(".service")),
          QStringLiteral("[D-BUS Service]\nName=%1\nExec=%2\n").arg(name, command));
    auto reload = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
                                                 QStringLiteral("org.freedesktop.DBus"),
                                                 QStringLiteral("ReloadConfig"));
    EXPECT_EQ(connect().call(reload).type(), QDBusMessage::ReplyMessage);
}

void PrivateBus::freeze() {
    ::kill(static_cast<pid_t>(m_daemon.processId()), SIGSTOP);
}

void PrivateBus::thaw() {
    ::kill(static_cast<pid_t>(m_daemon.processId()), SIGCONT);
}

void PrivateBus::end() {
    if (m_daemon.state() == QProcess::NotRunning)
        return;
    m_daemon.kill();
    m_daemon.waitForFinished();
}

} // namespace nightjar
