// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/BluetoothReport.h"

#include "app/bluetooth/BluetoothTexts.h"
#include "app/headless/ReadableText.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <utility>

namespace nightjar::headless {
namespace {

constexpr std::size_t mostOfAName = 100;
/// How the name begins that is made up for a device without one.
constexpr std::string_view madeUpName = "Bluetooth device ";

/// States that change all the time while all is well, and how long one of them stands.
std::chrono::seconds restOf(std::string_view state) {
    if (state.starts_with("Found "))
        return std::chrono::seconds(10);
    if (state.starts_with("Live signal"))
        return std::chrono::seconds(1);
    return std::chrono::seconds(0);
}

std::string deviceLine(const DiscoveredTracker& device) {
    std::string line = "Bluetooth device " + terminalSafe(device.name, mostOfAName) + ", " +
                       std::to_string(device.rssi) + " dBm, " + std::string(title(device.band));
    if (device.isMeshtastic)
        line += ", a Meshtastic radio";
    return line;
}

std::string trackedLine(const TrackedBluetoothDevice& device) {
    const std::string name = terminalSafe(device.name, mostOfAName);
    if (!device.lossAlertEnabled)
        return "tracking " + name + ", no alert";
    return "tracking " + name + ", alert after " +
           BluetoothTexts::lossDelayDescription(device.lossAlertDelay) + " without a signal";
}

} // namespace

BluetoothReport::BluetoothReport(BluetoothTrackerManager& manager, Scheduler& scheduler,
                                 std::function<void()> changed)
    : m_manager(manager), m_scheduler(scheduler), m_changed(std::move(changed)) {
    using M = BluetoothTrackerManager;
    m_states.add("bluetooth", [this] { return calmState(); });
    m_states.add("text messages", [this] { return messageStatus(); });
    // Printing an error is what a click on OK is in the window: the same sentence is told again next time.
    m_states.addError([this] { return m_manager.errorMessage().value_or(""); },
                      [this] { m_manager.setErrorMessage({}); });
    for (const auto signal : {&M::stateChanged, &M::iMessageStatusChanged, &M::errorMessageChanged})
        connect(&manager, signal, this, m_changed);
    connect(&manager, &M::trackedDevicesChanged, this, [this] {
        m_trackedChanged = true;
        m_changed();
    });
    connect(&manager, &M::deviceChanged, this, &BluetoothReport::noteDevice);
    connect(&manager, &M::devicesCleared, this, [this] {
        m_isTold.clear();
        m_newDevices.clear();
    });
    for (std::size_t i = 0; i < manager.devices().size(); ++i)
        noteDevice(i);
}

void BluetoothReport::print(ReadableLines& lines) {
    m_states.print(lines);
    printTracked(lines);
    printDevices(lines);
}

/// Nothing for those who want no text messages.
std::string BluetoothReport::messageStatus() const {
    const bool isWanted = m_manager.iMessageAlertsEnabled() || !m_manager.iMessageRecipient().empty();
    return isWanted ? m_manager.iMessageStatus() : std::string();
}

std::string BluetoothReport::calmState() {
    const std::string& state = m_manager.state();
    const auto rest = restOf(state);
    if (rest.count() > 0 && m_calm && restOf(m_state) == rest)
        return m_state;
    if (state != m_state)
        m_calm.cancel();
    if (rest.count() > 0 && !m_calm) {
        m_calm = m_scheduler.after(rest, [this] {
            m_calm.cancel();
            m_changed();
        });
    }
    return m_state = state;
}

void BluetoothReport::noteDevice(std::size_t index) {
    // Whoever else is told of a device may have cleared the list.
    if (index >= m_manager.devices().size())
        return;
    if (index >= m_isTold.size())
        m_isTold.resize(index + 1);
    if (m_isTold[index])
        return;
    // Addresses without a name come and go by the thousand; who says nothing of itself is only counted.
    const DiscoveredTracker& device = m_manager.devices()[index];
    if (!device.isMeshtastic && device.name.starts_with(madeUpName))
        return;
    m_isTold[index] = true;
    m_newDevices.push_back(index);
    m_changed();
}

void BluetoothReport::printDevices(ReadableLines& lines) {
    for (const auto index : std::exchange(m_newDevices, {})) {
        if (index < m_manager.devices().size())
            lines.printOrCount(deviceLine(m_manager.devices()[index]));
    }
}

/// What the user chose is told however much else there is.
void BluetoothReport::printTracked(ReadableLines& lines) {
    if (!std::exchange(m_trackedChanged, false))
        return;
    std::set<Uuid> present;
    for (const auto& device : m_manager.trackedDevices()) {
        present.insert(device.id);
        std::string& printed = m_tracked[device.id];
        auto line = trackedLine(device);
        if (line == printed)
            continue;
        lines.print(line);
        printed = std::move(line);
    }
    std::erase_if(m_tracked, [&](const auto& item) {
        if (present.contains(item.first))
            return false;
        lines.print("no longer " + item.second.substr(0, item.second.find_last_of(',')));
        return true;
    });
}

} // namespace nightjar::headless
