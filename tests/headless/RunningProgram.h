// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/json/JsonValue.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nightjar::headless {

/// A home of its own with one serial device, a scenario, and no desktop.
class PrivateHome {
public:
    PrivateHome();

    [[nodiscard]] QString path(const QString& below) const { return m_folder.filePath(below); }
    [[nodiscard]] std::string port() const {
        return path(QStringLiteral("dev/cu.usbserial-0001")).toStdString();
    }
    [[nodiscard]] QProcessEnvironment environment() const;

private:
    QTemporaryDir m_folder;
};

/// The real program as somebody drives it from outside. Ended by force when the object goes.
class RunningProgram {
public:
    RunningProgram(const PrivateHome& home, const QStringList& arguments);
    ~RunningProgram();

    void write(std::string_view line);
    void closeInput() { m_process.closeWriteChannel(); }
    void signal(int number);

    /// The first line, after those that were looked at before, that holds `piece`; empty when none comes in
    /// time.
    [[nodiscard]] std::string lineWith(std::string_view piece);
    /// Writes a request and waits for its answer.
    [[nodiscard]] std::string answerTo(std::string_view requestWithoutBraces);
    /// The exit status; absent when the program does not end in time or crashes.
    [[nodiscard]] std::optional<int> exitStatus();

    /// All lines so far.
    [[nodiscard]] const std::vector<std::string>& lines() const { return m_lines; }
    [[nodiscard]] std::string standardError() { return m_process.readAllStandardError().toStdString(); }
    [[nodiscard]] std::vector<int> children() const;

private:
    [[nodiscard]] bool waitFor(const std::function<bool()>& condition);
    void takeLines();

    QProcess m_process;
    std::string m_rest;
    std::vector<std::string> m_lines;
    std::size_t m_looked = 0; ///< how many lines were looked at
    int m_requests = 0;
};

} // namespace nightjar::headless
