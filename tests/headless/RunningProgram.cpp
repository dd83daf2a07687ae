// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/headless/RunningProgram.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <csignal>

namespace nightjar::headless {
namespace {

constexpr int limitMilliseconds = 60'000;

} // namespace

PrivateHome::PrivateHome() {
    QDir(m_folder.path()).mkpath(QStringLiteral("dev"));
    QDir(m_folder.path()).mkpath(QStringLiteral("tmp"));
    QFile::copy(QStringLiteral(NIGHTJAR_TEST_SCENARIO), QString::fromStdString(port()));
}

QProcessEnvironment PrivateHome::environment() const {
    auto environment = QProcessEnvironment::systemEnvironment();
    const auto set = [&](const char* name, const QString& value) {
        environment.insert(QLatin1String(name), value);
    };
    set("HOME", path(QStringLiteral("home")));
    set("XDG_DATA_HOME", path(QStringLiteral("data")));
    set("XDG_CONFIG_HOME", path(QStringLiteral("config")));
    set("TMPDIR", path(QStringLiteral("tmp")));
    set("NIGHTJAR_DEVICE_FOLDER", path(QStringLiteral("dev")));
    set("HALVARD_MESHTASTIC_BRIDGE_PATH", QStringLiteral(NIGHTJAR_BRIDGE_PROGRAM));
    set("DBUS_SESSION_BUS_ADDRESS", QStringLiteral("unix:path=") + path(QStringLiteral("no-bus")));
    set("DBUS_SYSTEM_BUS_ADDRESS", QStringLiteral("unix:path=") + path(QStringLiteral("no-bus")));
    return environment;
}

RunningProgram::RunningProgram(const PrivateHome& home, const QStringList& arguments) {
    m_process.setProcessEnvironment(home.environment());
    m_process.start(QStringLiteral(NIGHTJAR_PROGRAM), arguments);
    m_process.waitForStarted();
}

RunningProgram::~RunningProgram() {
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.kill();
    m_process.waitForFinished();
}

void RunningProgram::write(std::string_view line) {
    m_process.write(line.data(), static_cast<qint64>(line.size()));
    m_process.write("\n");
}

void RunningProgram::signal(int number) {
    ::kill(static_cast<pid_t>(m_process.processId()), number);
}

std::string RunningProgram::lineWith(std::string_view piece) {
    std::string found;
    const auto look = [&] {
        while (found.empty() && m_looked < m_lines.size()) {
            const auto& line = m_lines[m_looked++];
            if (line.find(piece) != std::string::npos)
                found = line;
        }
        return !found.empty();
    };
    return waitFor(look) ? found : std::string();
}

std::string RunningProgram::answerTo(std::string_view requestWithoutBraces) {
    const auto id = "\"id\":" + std::to_string(++m_requests);
    std::string request("{");
    write(request.append(requestWithoutBraces).append(",").append(id).append("}"));
    std::string answer;
    const auto look = [&] {
        for (const auto& line : m_lines) {
            const bool isAnswer = line.starts_with(R"({"type":"done",)") ||
                                  line.starts_with(R"({"type":"value",)") ||
                                  line.starts_with(R"({"type":"refused",)");
            const auto at = line.find(id);
            if (isAnswer && at != std::string::npos && std::string_view(",}").contains(line[at + id.size()]))
                answer = line;
        }
        return !answer.empty();
    };
    return waitFor(look) ? answer : std::string();
}

std::optional<int> RunningProgram::exitStatus() {
    const bool ended = waitFor([this] { return m_process.state() == QProcess::NotRunning; });
    if (!ended || m_process.exitStatus() != QProcess::NormalExit)
        return std::nullopt;
    takeLines();
    return m_process.exitCode();
}

std::vector<int> RunningProgram::children() const {
    const auto id = QString::number(m_process.processId());
    std::vector<int> children;
    for (const auto& thread :
         QDir(QStringLiteral("/proc/%1/task").arg(id)).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(QStringLiteral("/proc/%1/task/%2/children").arg(id, thread));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        for (const auto& child : file.readAll().simplified().split(' ')) {
            if (!child.isEmpty())
                children.push_back(child.toInt());
        }
    }
    return children;
}

bool RunningProgram::waitFor(const std::function<bool()>& condition) {
    QElapsedTimer timer;
    timer.start();
    while (true) {
        takeLines();
        if (condition())
            return true;
        if (timer.elapsed() > limitMilliseconds || m_process.state() == QProcess::NotRunning)
            return false;
        m_process.waitForReadyRead(100);
    }
}

void RunningProgram::takeLines() {
    m_rest += m_process.readAllStandardOutput().toStdString();
    std::size_t start = 0;
    for (auto feed = m_rest.find('\n'); feed != std::string::npos; feed = m_rest.find('\n', start)) {
        m_lines.push_back(m_rest.substr(start, feed - start));
        start = feed + 1;
    }
    m_rest.erase(0, start);
}

} // namespace nightjar::headless
