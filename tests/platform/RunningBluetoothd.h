// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QProcess>
#include <QString>

#include <string>

namespace nightjar {

/// A stand-in for the Bluetooth daemon in a process of its own; its commands are listed in
/// StandInBluetoothdMain.cpp. It goes with its owner.
class RunningBluetoothd {
public:
    explicit RunningBluetoothd(const QString& busAddress);
    ~RunningBluetoothd();
    RunningBluetoothd(const RunningBluetoothd&) = delete;
    RunningBluetoothd& operator=(const RunningBluetoothd&) = delete;

    /// What it answers; a test fails on an error. Words with spaces go through `encoded`.
    std::string tell(const std::string& command);
    [[nodiscard]] static std::string encoded(const std::string& word);

    /// At once, without a word to anybody.
    void kill();
    /// It does nothing, not even answer, until `thaw`.
    void freeze();
    void thaw();

private:
    QProcess m_process;
};

} // namespace nightjar
