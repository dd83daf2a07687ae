// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/bluetooth/BluetoothSection.h"

#include "ui/bluetooth/BluetoothContent.h"
#include "ui/bluetooth/BluetoothInspector.h"
#include "ui/bluetooth/BluetoothLastSeenMap.h"
#include "ui/bluetooth/BluetoothRows.h"
#include "ui/bluetooth/BluetoothSidebar.h"
#include "ui/common/SidebarPage.h"

#include <utility>

namespace nightjar {

BluetoothSection::BluetoothSection(ViewContext& context)
    : m_context(context), m_trackedDevicesChanged([this] { trackedDevicesChanged(); }) {
    using M = BluetoothTrackerManager;
    const auto& manager = context.bluetoothTrackers();
    connect(&manager, &M::trackedDevicesChanged, &m_trackedDevicesChanged, &Coalesced::request);
    connect(&manager, &M::isScanningChanged, this, &ScanningSection::scanTitleChanged);
}

BluetoothSection::~BluetoothSection() {
    delete m_sidebar;
    delete m_content;
    delete m_inspector;
}

QWidget* BluetoothSection::sidebar() {
    if (!m_sidebar)
        m_sidebar = new BluetoothSidebar(m_context, m_selection);
    return m_sidebar;
}

QWidget* BluetoothSection::content() {
    if (!m_content)
        m_content = new BluetoothContent(m_context, m_selection);
    return m_content;
}

QWidget* BluetoothSection::inspector() {
    if (!m_inspector)
        m_inspector = new BluetoothInspector(m_context, m_selection);
    return m_inspector;
}

MapView& BluetoothSection::map() {
    return static_cast<BluetoothContent*>(content())->map().map();
}

void BluetoothSection::activate() {
    m_isActive = true;
    if (auto& manager = m_context.bluetoothTrackers(); !manager.isScanning())
        manager.startScanning();
    selectIfNeeded();
}

void BluetoothSection::deactivate() {
    m_isActive = false;
    auto& manager = m_context.bluetoothTrackers();
    if (manager.isFinding())
        manager.stopFinding();
    else if (manager.isScanning())
        manager.stopScanning();
    manager.setFinderSoundEnabled(false);
}

void BluetoothSection::takeFocus() {
    if (m_sidebar)
        m_sidebar->page().takeFocus();
}

QString BluetoothSection::scanTitle() const {
    return m_context.bluetoothTrackers().isScanning() ? QStringLiteral("Stop") : QStringLiteral("Scan");
}

void BluetoothSection::scanOrStop() {
    auto& manager = m_context.bluetoothTrackers();
    if (!manager.isScanning())
        manager.startScanning();
    else if (manager.isFinding())
        manager.stopFinding();
    else
        manager.stopScanning();
}

void BluetoothSection::trackedDevicesChanged() {
    std::vector<Uuid> ids;
    for (const auto& device : m_context.bluetoothTrackers().trackedDevices())
        ids.push_back(device.id);
    if (std::exchange(m_trackedIDs, std::move(ids)) != m_trackedIDs && m_isActive)
        selectIfNeeded();
}

void BluetoothSection::selectIfNeeded() {
    m_selection.set(
        selectFirstTrackedBluetoothDeviceIfNeeded(m_selection.id(), m_context.bluetoothTrackers()));
}

} // namespace nightjar
