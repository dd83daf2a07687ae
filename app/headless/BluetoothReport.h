// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/bluetooth/BluetoothTrackerManager.h"
#include "app/headless/ReadableLines.h"
#include "app/headless/StateLines.h"
#include "platform/Scheduler.h"

#include <QObject>

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace nightjar::headless {

/// The Bluetooth side as lines for people: its state, the devices that say who they are, once each in a scan,
/// and what is tracked. Main thread.
class BluetoothReport : public QObject {
    Q_OBJECT
public:
    /// `changed` is called after each change that `print` may have something to say about.
    BluetoothReport(BluetoothTrackerManager& manager, Scheduler& scheduler, std::function<void()> changed);

    void print(ReadableLines& lines);

private:
    [[nodiscard]] std::string calmState();
    [[nodiscard]] std::string messageStatus() const;
    void noteDevice(std::size_t index);
    void printDevices(ReadableLines& lines);
    void printTracked(ReadableLines& lines);

    BluetoothTrackerManager& m_manager;
    Scheduler& m_scheduler;
    std::function<void()> m_changed;
    StateLines m_states;
    std::string m_state;        ///< as it was last given to be printed
    Timer m_calm;               ///< runs while a reading or a count may not be printed again
    std::vector<bool> m_isTold; ///< by place in the list of devices
    std::vector<std::size_t> m_newDevices;
    bool m_trackedChanged = true;
    std::map<Uuid, std::string> m_tracked; ///< what was last printed of each tracked device
};

} // namespace nightjar::headless
