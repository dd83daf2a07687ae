// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/bluetooth/BluetoothContent.h"

#include "ui/bluetooth/BluetoothFinderDetail.h"
#include "ui/bluetooth/BluetoothLastSeenMap.h"
#include "ui/common/Buttons.h"
#include "ui/common/DetailView.h"
#include "ui/common/TextLabel.h"
#include "ui/common/UnavailableView.h"
#include "ui/map/MapGeometry.h"

namespace nightjar {

BluetoothContent::BluetoothContent(ViewContext& context, Selection& selection, QWidget* parent)
    : QStackedWidget(parent),
      m_context(context),
      m_selection(selection),
      m_nothing(new UnavailableView),
      m_finder(new BluetoothFinderDetail(context)),
      m_map(new BluetoothLastSeenMap(context)),
      m_unlocated(makeUnlocated()),
      m_nearby(makeNearby()),
      m_refresh([this] { refresh(); }) {
    for (QWidget* page : std::initializer_list<QWidget*>{m_nothing, m_finder, m_map, m_unlocated, m_nearby})
        addWidget(page);
    connectManager();
    connect(&selection, &Selection::changed, &m_refresh, &Coalesced::request);
    connect(&context, &ViewContext::timePassed, &m_refresh, &Coalesced::request);
    refresh();
}

DetailView* BluetoothContent::makeUnlocated() {
    auto* view = new DetailView;
    view->addText(TextSize::body, Tint::secondary)
        ->setText(QStringLiteral("Nightjar is tracking this device. Its last-seen location will appear after "
                                 "the Mac has a location fix and hears the device again."));
    return view;
}

DetailView* BluetoothContent::makeNearby() {
    auto* view = new DetailView;
    view->addText(TextSize::body, Tint::secondary)
        ->setText(QStringLiteral("Use the live Bluetooth signal to locate this device nearby."));
    view->addSpacing(14);
    auto* track = makeButton(QStringLiteral("Track This Device"), ButtonLook::large);
    auto* find = makeButton(QStringLiteral("Find Nearby"));
    find->setMinimumHeight(36);
    view->addRow({track, find});
    connect(track, &QPushButton::clicked, this, [this] {
        auto& manager = m_context.bluetoothTrackers();
        const auto device = shownBluetoothDevice(manager, m_selection.id(), m_context.now());
        if (device && device->live)
            manager.track(*device->live);
    });
    connect(find, &QPushButton::clicked, this, [this] {
        if (const auto id = Uuid::fromText(m_selection.id()))
            m_context.bluetoothTrackers().startFinding(*id);
    });
    return view;
}

void BluetoothContent::connectManager() {
    using M = BluetoothTrackerManager;
    const auto& manager = m_context.bluetoothTrackers();
    for (const auto signal :
         {&M::devicesCleared, &M::trackedDevicesChanged, &M::isScanningChanged, &M::isFindingChanged,
          &M::trackedIDChanged, &M::finderSoundEnabledChanged, &M::timePassed})
        connect(&manager, signal, &m_refresh, &Coalesced::request);
    connect(&manager, &M::deviceChanged, this, [this, &manager](std::size_t place) {
        if (manager.devices()[place].id == Uuid::fromText(m_selection.id()))
            m_refresh.request();
    });
}

void BluetoothContent::refresh() {
    if (const auto device =
            shownBluetoothDevice(m_context.bluetoothTrackers(), m_selection.id(), m_context.now()))
        show(*device);
    else
        showNothing();
}

void BluetoothContent::showNothing() {
    const bool isScanning = m_context.bluetoothTrackers().isScanning();
    m_nothing->show(QStringLiteral("dot.radiowaves.left.and.right"),
                    isScanning ? QStringLiteral("Looking for Bluetooth devices")
                               : QStringLiteral("Choose a Bluetooth device"),
                    isScanning ? QStringLiteral("Listening for Bluetooth devices nearby.")
                               : QStringLiteral("Select a nearby device in the sidebar."));
    setCurrentWidget(m_nothing);
}

void BluetoothContent::show(const ShownBluetoothDevice& device) {
    if (isFinding(m_context.bluetoothTrackers(), device.id)) {
        m_finder->refresh(device.name());
        setCurrentWidget(m_finder);
    } else if (device.hasLocation() && isOnEarth({*device.tracked->latitude, *device.tracked->longitude})) {
        m_map->show(*device.tracked);
        setCurrentWidget(m_map);
    } else if (device.tracked) {
        m_unlocated->show(QStringLiteral("location.slash"), Tint::secondary, device.name());
        setCurrentWidget(m_unlocated);
    } else {
        m_nearby->show(QStringLiteral("sensor.tag.radiowaves.forward.fill"), Tint::blue, device.name());
        setCurrentWidget(m_nearby);
    }
}

} // namespace nightjar
