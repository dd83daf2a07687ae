// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/network/NetworkBed.h"

#include "platform/linux/NetworkLinks.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <csignal>
#include <fcntl.h>
#include <sched.h>
#include <sys/prctl.h>
#include <thread>
#include <unistd.h>

namespace nightjar::bed {
namespace {

constexpr const char* configuration = R"([server]
host-name=%1
use-ipv4=yes
use-ipv6=no
enable-dbus=%2
disallow-other-stacks=no
ratelimit-burst=0
[wide-area]
enable-wide-area=no
[publish]
publish-hinfo=no
publish-workstation=no
)";

/// The daemon has one place for its process id and one for the services; each gets its own.
constexpr const char* start =
    "mkdir -p /run/avahi-daemon && mount -t tmpfs none /run/avahi-daemon && mount --bind \"$0/services\" "
    "/etc/avahi/services && exec avahi-daemon -f \"$0/avahi.conf\" --no-drop-root --no-chroot --no-rlimits "
    "--no-proc-title";

/// Without its network there is nothing to test or to measure.
void require(bool isSo, const QString& what) {
    if (!isSo)
        qFatal("%s", what.toUtf8().constData());
}

void write(const QString& path, const QString& text) {
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) >= 0, file.errorString());
}

/// A test that crashes leaves nothing behind.
void launch(QProcess& process, const QStringList& command) {
    process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    process.start(command.first(), command.mid(1));
    require(process.waitForStarted(10'000), process.errorString());
}

} // namespace

std::optional<std::string> obstacle() {
    for (const auto* program : {"avahi-daemon", "ip", "unshare", "nsenter", "python3"})
        if (QStandardPaths::findExecutable(QString::fromLatin1(program)).isEmpty() &&
            !QFile::exists(QStringLiteral("/usr/sbin/") + QString::fromLatin1(program)))
            return std::string("there is no program ") + program;
    if (::geteuid() != 0)
        return "only root can make a network";
    QProcess attempt;
    attempt.start(
        QStringLiteral("unshare"),
        {QStringLiteral("-nm"), QStringLiteral("sh"), QStringLiteral("-c"),
         QStringLiteral("mount -t tmpfs none /mnt && ip link add name near type veth peer name far")});
    if (!attempt.waitForFinished() || attempt.exitCode() != 0)
        return "this machine does not let us make a network";
    return std::nullopt;
}

Computer::Computer() {
    launch(m_holder, {QStringLiteral("unshare"), QStringLiteral("-n"), QStringLiteral("cat")});
    // The echo tells that the namespace is there.
    m_holder.write("\n");
    require(m_holder.waitForReadyRead(10'000), QStringLiteral("no network namespace"));
    run({QStringLiteral("ip"), QStringLiteral("link"), QStringLiteral("set"), QStringLiteral("lo"),
         QStringLiteral("up")});
}

Computer::~Computer() {
    m_holder.kill();
    m_holder.waitForFinished();
}

void Computer::run(const QStringList& command) const {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    const auto words = inside(command);
    process.start(words.first(), words.mid(1));
    require(process.waitForFinished() && process.exitCode() == 0, command.join(QLatin1Char(' ')));
}

QStringList Computer::inside(const QStringList& command) const {
    return QStringList{QStringLiteral("nsenter"), QStringLiteral("-t"), processId(), QStringLiteral("-n")} +
           command;
}

int Computer::openLinkSocket() const {
    int socket = -1;
    // A thread of its own, for a thread that has gone into a namespace stays there.
    std::thread([&] {
        const int network =
            ::open(QStringLiteral("/proc/%1/ns/net").arg(processId()).toUtf8().constData(), O_RDONLY);
        require(network >= 0 && ::setns(network, CLONE_NEWNET) == 0,
                QStringLiteral("no way into the network"));
        ::close(network);
        socket = NetworkLinks::openSocket();
    }).join();
    return socket;
}

Switch::Switch(int number) : m_number(number) {
    // Without snooping nothing of the multicast is held back.
    m_computer.run(QStringLiteral("ip link add br0 type bridge mcast_snooping 0").split(QLatin1Char(' ')));
    m_computer.run(QStringLiteral("ip link set br0 up").split(QLatin1Char(' ')));
}

void Switch::connect(const Computer& computer, const QString& interface, int host) {
    m_computer.run(QStringLiteral("ip link add port%1 type veth peer name %2 netns %3")
                       .arg(host)
                       .arg(interface, computer.processId())
                       .split(QLatin1Char(' ')));
    m_computer.run(QStringLiteral("ip link set port%1 master br0 up").arg(host).split(QLatin1Char(' ')));
    computer.run(
        QStringLiteral("ip addr add %1/24 dev %2").arg(address(host), interface).split(QLatin1Char(' ')));
    computer.run(QStringLiteral("ip link set %1 up").arg(interface).split(QLatin1Char(' ')));
}

QString Switch::address(int host) const {
    return QStringLiteral("10.77.%1.%2").arg(m_number).arg(host);
}

void Switch::setPort(int host, const QString& state) {
    m_computer.run(QStringLiteral("ip link set port%1 %2").arg(host).arg(state).split(QLatin1Char(' ')));
}

Program::Program(const QStringList& command, const QString& busAddress) {
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), busAddress);
    m_process.setProcessEnvironment(environment);
    // What it has to say is read only when something is wrong.
    if (!qEnvironmentVariableIsSet("NIGHTJAR_TEST_VERBOSE")) {
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.setStandardOutputFile(QProcess::nullDevice());
    } else {
        m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    }
    launch(m_process, command);
}

Program::~Program() {
    thaw();
    kill();
}

void Program::end() {
    m_process.terminate();
    require(m_process.waitForFinished(10'000), QStringLiteral("a program does not end"));
}

void Program::kill() {
    m_process.kill();
    m_process.waitForFinished();
}

void Program::freeze() {
    if (m_process.state() == QProcess::Running)
        ::kill(static_cast<pid_t>(m_process.processId()), SIGSTOP);
}

void Program::thaw() {
    if (m_process.state() == QProcess::Running)
        ::kill(static_cast<pid_t>(m_process.processId()), SIGCONT);
}

double Program::processorSeconds() const {
    QFile file(QStringLiteral("/proc/%1/stat").arg(m_process.processId()));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    // After the name in brackets come the fields from the third on; the 14th and 15th are ticks.
    const auto fields = file.readAll().split(')').last().trimmed().split(' ');
    return (fields.at(11).toDouble() + fields.at(12).toDouble()) /
           static_cast<double>(::sysconf(_SC_CLK_TCK));
}

Avahi::Avahi(const Computer& computer, const QString& hostName, const QString& busAddress,
             const QList<Service>& services) {
    QDir(m_folder.path()).mkdir(QStringLiteral("services"));
    write(m_folder.filePath(QStringLiteral("avahi.conf")),
          QString::fromLatin1(configuration)
              .arg(hostName, busAddress.isEmpty() ? QStringLiteral("no") : QStringLiteral("yes")));
    for (qsizetype i = 0; i < services.size(); ++i)
        write(m_folder.filePath(QStringLiteral("services/%1.service").arg(i)),
              QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?><service-group><name>%1</name>"
                             "<service><type>%2</type><port>80</port></service></service-group>")
                  .arg(services[i].name.toHtmlEscaped(), services[i].type));
    m_program = std::make_unique<Program>(
        computer.inside({QStringLiteral("unshare"), QStringLiteral("-m"), QStringLiteral("--propagation"),
                         QStringLiteral("private"), QStringLiteral("sh"), QStringLiteral("-c"),
                         QString::fromLatin1(start), m_folder.path()}),
        busAddress);
}

} // namespace nightjar::bed
