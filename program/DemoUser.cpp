// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "program/DemoUser.h"

#include "app/mesh/NightjarModel.h"
#include "program/DemoBluetooth.h"
#include "program/DemoNetwork.h"

#include <algorithm>

namespace nightjar {
namespace {

/// Seconds; the shortest that can be chosen, so that the demo need not be waited for.
constexpr double shortestDelay = 15;
/// Seconds; much shorter than most would choose, for the same reason.
constexpr double absence = 60;

} // namespace

DemoUser::DemoUser(NightjarModel& model) : m_model(model) {
    // Queued: a user acts on what has been shown, never in the middle of a change.
    connect(&model, &NightjarModel::nodesChanged, this, &DemoUser::guardBicycle, Qt::QueuedConnection);
    connect(&model.bluetoothTrackers(), &BluetoothTrackerManager::devicesChanged, this, &DemoUser::watchKeys,
            Qt::QueuedConnection);
    connect(
        &model.localNetwork(), &LocalNetworkBrowser::devicesChanged, this,
        [this] {
            watchMachine(demoPrinterName);
            watchMachine(demoSpeakerName);
        },
        Qt::QueuedConnection);
}

void DemoUser::begin() {
    m_model.bluetoothTrackers().startScanning();
    m_model.localNetwork().start();
}

void DemoUser::guardBicycle() {
    if (m_model.parkedPosition())
        return;
    const auto& nodes = m_model.nodes();
    const auto bicycle = std::ranges::find_if(
        nodes, [](const MeshNode& node) { return node.longName == "Bicycle" && node.position.has_value(); });
    if (bicycle == nodes.end())
        return;
    m_model.setGuardProfile(GuardProfile::bicycle);
    m_model.setGuarded(MeshNode(*bicycle));
    m_model.markGuardedPosition();
}

void DemoUser::watchKeys() {
    auto& bluetooth = m_model.bluetoothTrackers();
    if (m_hasSeenKeys)
        return;
    const auto keys = std::ranges::find(bluetooth.devices(), demoKeysName, &DiscoveredTracker::name);
    if (keys == bluetooth.devices().end())
        return;
    m_hasSeenKeys = true;
    const auto id = keys->id;
    bluetooth.track(DiscoveredTracker(*keys));
    bluetooth.setLossAlertDelay(shortestDelay, id);
    bluetooth.setLossAlert(true, id);
}

void DemoUser::watchMachine(std::string_view name) {
    if (m_seenMachines.contains(name))
        return;
    auto& network = m_model.localNetwork();
    const auto machine = std::ranges::find(network.devices(), name, &LocalNetworkDevice::name);
    if (machine == network.devices().end())
        return;
    m_seenMachines.emplace(name);
    const auto id = machine->id;
    network.setLossAlert(true, id);
    network.setLossAlertDelay(absence, id);
}

} // namespace nightjar
