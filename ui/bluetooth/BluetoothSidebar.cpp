// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/bluetooth/BluetoothSidebar.h"

#include "ui/bluetooth/BluetoothRows.h"
#include "ui/common/SidebarPage.h"
#include "ui/common/StatusLine.h"
#include "ui/rows/SidebarList.h"
#include "ui/text/ShownText.h"

#include <QMenu>
#include <QVBoxLayout>

#include <utility>

namespace nightjar {

namespace {

constexpr std::chrono::milliseconds period{250};

} // namespace

BluetoothSidebar::BluetoothSidebar(ViewContext& context, Selection& selection, QWidget* parent)
    : QWidget(parent),
      m_context(context),
      m_selection(selection),
      m_page(new SidebarPage(
          QStringLiteral("Bluetooth devices"), [this](const std::string& id) { return rowOf(id); },
          QStringLiteral("dot.radiowaves.left.and.right"))),
      m_devices(context.platform().scheduler, period, [this] { refreshDevices(); }),
      m_state([this] { refreshState(); }) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_page);

    using M = BluetoothTrackerManager;
    const auto& manager = context.bluetoothTrackers();
    connect(&manager, &M::deviceChanged, this, &BluetoothSidebar::deviceChanged);
    for (const auto signal :
         {&M::devicesCleared, &M::trackedDevicesChanged, &M::isFindingChanged, &M::trackedIDChanged})
        connect(&manager, signal, this, &BluetoothSidebar::requestList);
    for (const auto signal : {&M::stateChanged, &M::isScanningChanged})
        connect(&manager, signal, &m_state, &Coalesced::request);
    connect(&manager, &M::isScanningChanged, this, [this] { m_page->list().refreshRows(); });
    connect(&manager, &M::timePassed, this, [this] { m_page->list().refreshRows(); });
    connect(&context, &ViewContext::timePassed, this, [this] { m_page->list().refreshRows(); });
    connect(&selection, &Selection::changed, this, [this] { m_page->list().select(m_selection.id()); });
    connect(&m_page->list(), &SidebarList::selected, &selection, &Selection::set);
    connect(&m_page->list(), &SidebarList::menuRequested, this, &BluetoothSidebar::openMenu);
    refreshDevices();
}

Row BluetoothSidebar::rowOf(const std::string& id) const {
    const auto& manager = m_context.bluetoothTrackers();
    const auto device = shownBluetoothDevice(manager, id, m_context.now());
    if (!device)
        return {};
    if (!device->tracked)
        return bluetoothDeviceRow(*device->live, isFinding(manager, device->id));
    return trackedBluetoothDeviceRow(*device->tracked, device->isHeard ? device->live : nullptr,
                                     m_context.relativeTime(device->tracked->lastSeen));
}

void BluetoothSidebar::deviceChanged(std::size_t place) {
    if (place >= m_listed)
        m_listIsDue = true;
    else if (!m_listIsDue)
        m_changed.insert(m_context.bluetoothTrackers().devices()[place].id);
    m_devices.request();
}

void BluetoothSidebar::requestList() {
    m_listIsDue = true;
    m_devices.request();
}

void BluetoothSidebar::refreshDevices() {
    auto& list = m_page->list();
    const auto changed = std::exchange(m_changed, {});
    if (!std::exchange(m_listIsDue, false)) {
        for (const Uuid& id : changed)
            list.refreshRow(id.text());
        return;
    }
    const auto& manager = m_context.bluetoothTrackers();
    m_listed = manager.devices().size();
    list.setSections(bluetoothSections(manager));
    list.select(m_selection.id());
    refreshState();
}

void BluetoothSidebar::refreshState() {
    const auto& manager = m_context.bluetoothTrackers();
    m_page->status().setText(shownLine(manager.state()));
    if (!manager.devices().empty() || !manager.trackedDevices().empty())
        m_page->showList();
    else
        m_page->showUnavailable(manager.isScanning() ? QStringLiteral("Looking for devices")
                                                     : QStringLiteral("No Bluetooth devices found"),
                                QStringLiteral("Devices appear as the Mac hears them during this scan."));
}

void BluetoothSidebar::openMenu(const std::string& id, QPoint at) {
    auto& manager = m_context.bluetoothTrackers();
    const auto device = shownBluetoothDevice(manager, id, m_context.now());
    if (!device)
        return;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const Uuid uuid = device->id;
    if (device->tracked)
        menu->addAction(QStringLiteral("Stop Tracking"), this,
                        [&manager, uuid] { manager.stopTracking(uuid); });
    else
        menu->addAction(QStringLiteral("Track This Device"), this, [&manager, uuid] {
            if (const auto* live = manager.deviceWith(uuid))
                manager.track(*live);
        });
    if (isFinding(manager, uuid))
        menu->addAction(QStringLiteral("Stop Finding"), this, [&manager] { manager.stopFinding(); });
    else
        menu->addAction(QStringLiteral("Find Nearby"), this, [this, &manager, id, uuid] {
            m_selection.set(id);
            manager.startFinding(uuid);
        });
    menu->popup(at);
}

} // namespace nightjar
