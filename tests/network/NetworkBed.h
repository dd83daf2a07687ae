// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <optional>
#include <string>

namespace nightjar {

/// Networks of the test's own, of the kernel's network namespaces; nothing of it reaches the real network,
/// and all of it goes with its owners. Needs root. What cannot be made ends the process.
namespace bed {

/// Why there can be no such network here; absent when there can.
[[nodiscard]] std::optional<std::string> obstacle();

/// A computer's network, in which programs can be started.
class Computer {
public:
    Computer();
    ~Computer();

    /// Waits for the end of the program.
    void run(const QStringList& command) const;
    /// The words that start a program there.
    [[nodiscard]] QStringList inside(const QStringList& command) const;
    [[nodiscard]] QString processId() const { return QString::number(m_holder.processId()); }
    /// As if the caller ran on that computer; see NetworkLinks::OpenSocket.
    [[nodiscard]] int openLinkSocket() const;

private:
    QProcess m_holder; ///< keeps the namespace
};

/// A switch with cables to computers.
class Switch {
public:
    /// Of the network 10.77.NUMBER.0/24.
    explicit Switch(int number);

    /// The computer's new interface has the address 10.77.NUMBER.HOST.
    void connect(const Computer& computer, const QString& interface, int host);
    [[nodiscard]] QString address(int host) const;
    /// At the side of the switch.
    void pull(int host) { setPort(host, QStringLiteral("down")); }
    void plugIn(int host) { setPort(host, QStringLiteral("up")); }

private:
    void setPort(int host, const QString& state);

    Computer m_computer;
    int m_number;
};

/// A program that is there as long as its owner.
class Program {
public:
    Program(const QStringList& command, const QString& busAddress = {});
    ~Program();

    /// In order, or at once.
    void end();
    void kill();
    void freeze();
    void thaw();
    /// Seconds on the processor so far.
    [[nodiscard]] double processorSeconds() const;

private:
    QProcess m_process;
};

/// The daemon of Avahi. Without a bus it is a device that announces what it is told to.
class Avahi {
public:
    struct Service {
        QString name;
        QString type;
    };

    Avahi(const Computer& computer, const QString& hostName, const QString& busAddress,
          const QList<Service>& services = {});

    [[nodiscard]] Program& program() { return *m_program; }
    [[nodiscard]] const Program& program() const { return *m_program; }

private:
    QTemporaryDir m_folder;
    std::unique_ptr<Program> m_program;
};

} // namespace bed
} // namespace nightjar
