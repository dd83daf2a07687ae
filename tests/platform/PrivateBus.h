// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace nightjar {

/// A message bus of the test's own, on which nothing of the real desktop is or gets started.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();

    [[nodiscard]] QString address() const { return m_address; }
    /// A new connection each time.
    [[nodiscard]] QDBusConnection connect() const;
    /// The bus starts `command` when somebody calls `name`.
    void makeActivatable(const QString& name, const QString& command);
    /// The bus takes and answers nothing until `thaw`.
    void freeze();
    void thaw();
    void end();

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
    QString m_address;
};

} // namespace nightjar
