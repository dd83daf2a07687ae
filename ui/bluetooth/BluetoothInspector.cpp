// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/bluetooth/BluetoothInspector.h"

#include "ui/common/Buttons.h"
#include "ui/common/Card.h"
#include "ui/common/DelayPicker.h"
#include "ui/common/FocusHeirs.h"
#include "ui/common/InspectorPage.h"
#include "ui/common/NameField.h"
#include "ui/common/SwitchControl.h"
#include "ui/common/TextLabel.h"
#include "ui/common/UnavailableView.h"
#include "ui/text/ShownText.h"

namespace nightjar {

namespace {

std::vector<DelayChoice> delayChoices() {
    return {{QStringLiteral("15 seconds"), 15},
            {QStringLiteral("30 seconds"), 30},
            {QStringLiteral("1 minute"), 60},
            {QStringLiteral("2 minutes"), 120},
            {},
            {QStringLiteral("15 minutes"), 900},
            {QStringLiteral("30 minutes"), 1800},
            {QStringLiteral("1 hour"), 3600},
            {QStringLiteral("1 day"), 86400}};
}

TextLabel* addNote(InspectorPage& page, const QString& text) {
    auto* note = new TextLabel(text, TextSize::caption, Tint::secondary);
    note->setWordWrap(true);
    note->setContentsMargins(4, 0, 4, 0);
    page.addWidget(note);
    return note;
}

QString captionOf(const ShownBluetoothDevice& device) {
    if (!device.isHeard)
        return QStringLiteral("Not currently heard");
    return device.live->isMeshtastic ? QStringLiteral("Meshtastic") : QStringLiteral("Bluetooth LE");
}

} // namespace

BluetoothInspector::BluetoothInspector(ViewContext& context, Selection& selection, QWidget* parent)
    : QStackedWidget(parent),
      m_context(context),
      m_selection(selection),
      m_nothing(new UnavailableView),
      m_page(new InspectorPage),
      m_refresh([this] { refresh(); }) {
    m_nothing->show(QStringLiteral("dot.radiowaves.left.and.right"),
                    QStringLiteral("Select a Bluetooth device"),
                    QStringLiteral("Choose a nearby device to see its signal and available actions."));
    addWidget(m_nothing);
    addWidget(m_page);
    addSignal();
    addTracking();
    addLocation();
    addActions();
    connectControls();
    connectManager();
    refresh();
}

void BluetoothInspector::addSignal() {
    auto* card = m_page->addCard(QStringLiteral("Signal"));
    card->addRow(m_notHeard =
                     new TextLabel(QStringLiteral("Not currently heard"), TextSize::body, Tint::secondary));
    m_notHeard->setContentsMargins(12, 7, 12, 7);
    m_proximity = card->addMetric(QStringLiteral("Proximity"));
    m_strength = card->addMetric(QStringLiteral("Strength"));
    m_measurements = card->addMetric(QStringLiteral("Measurements"));
    m_lastSeen = card->addMetric(QStringLiteral("Last seen"));
}

void BluetoothInspector::addTracking() {
    const auto name = QStringLiteral("Device name");
    const auto alert = QStringLiteral("Alert when signal is lost");
    m_tracking = m_page->addCard(QStringLiteral("Tracking"));
    m_tracking->addControl(name, m_name = new NameField(name));
    m_tracking->addControl(alert, m_alert = new SwitchControl(alert));
    m_tracking->addControl(QStringLiteral("Alert after"),
                           m_delay = new DelayPicker(QStringLiteral("Alert after"), delayChoices()));
    m_tracking->addNote(QStringLiteral("The alarm is armed only after this Mac hears the device during the "
                                       "current scan. Bluetooth range and radio conditions can cause signal "
                                       "loss."));
    m_lastHeard = m_tracking->addMetric(QStringLiteral("Last heard"));
    m_lastSignal = m_tracking->addMetric(QStringLiteral("Last signal"));
    m_status = m_tracking->addMetric(QStringLiteral("Status"));
}

void BluetoothInspector::addLocation() {
    m_location = m_page->addCard(QStringLiteral("Last seen location"));
    m_latitude = m_location->addMetric(QStringLiteral("Latitude"));
    m_longitude = m_location->addMetric(QStringLiteral("Longitude"));
    m_recorded = m_location->addMetric(QStringLiteral("Recorded"));
}

void BluetoothInspector::addActions() {
    m_find = makeButton(QStringLiteral("Find Nearby"));
    m_track = makeButton(QStringLiteral("Track This Device"), ButtonLook::prominent);
    m_stopTracking = makeButton(QStringLiteral("Stop Tracking"));
    m_page->addButtons({m_find, m_track, m_stopTracking});
    addNote(*m_page, QStringLiteral("Nightjar records the Mac's location when it hears a tracked device. "
                                    "Bluetooth signal can show proximity while the device is nearby."));
}

void BluetoothInspector::connectControls() {
    auto& manager = m_context.bluetoothTrackers();
    connect(m_name, &NameField::renamed, this, [&manager](const std::string& id, const QString& name) {
        if (const auto uuid = Uuid::fromText(id))
            manager.renameTrackedDevice(*uuid, name.toStdString());
    });
    connect(m_alert, &QCheckBox::clicked, this, [this, &manager](bool isOn) {
        if (const auto id = Uuid::fromText(m_selection.id()))
            manager.setLossAlert(isOn, *id);
    });
    connect(m_delay, &DelayPicker::chosen, this, [this, &manager](double seconds) {
        if (const auto id = Uuid::fromText(m_selection.id()))
            manager.setLossAlertDelay(seconds, *id);
    });
    connect(m_find, &QPushButton::clicked, this, &BluetoothInspector::findOrStop);
    connect(m_track, &QPushButton::clicked, this, &BluetoothInspector::track);
    connect(m_stopTracking, &QPushButton::clicked, this, [this, &manager] {
        if (const auto id = Uuid::fromText(m_selection.id()))
            manager.stopTracking(*id);
    });
}

void BluetoothInspector::connectManager() {
    using M = BluetoothTrackerManager;
    const auto& manager = m_context.bluetoothTrackers();
    for (const auto signal : {&M::devicesCleared, &M::trackedDevicesChanged, &M::isScanningChanged,
                              &M::isFindingChanged, &M::trackedIDChanged, &M::timePassed})
        connect(&manager, signal, &m_refresh, &Coalesced::request);
    connect(&manager, &M::deviceChanged, this, [this, &manager](std::size_t place) {
        if (manager.devices()[place].id == Uuid::fromText(m_selection.id()))
            m_refresh.request();
    });
    connect(&m_selection, &Selection::changed, &m_refresh, &Coalesced::request);
    connect(&m_context, &ViewContext::timePassed, &m_refresh, &Coalesced::request);
}

void BluetoothInspector::findOrStop() {
    auto& manager = m_context.bluetoothTrackers();
    const auto id = Uuid::fromText(m_selection.id());
    if (!id)
        return;
    if (isFinding(manager, *id))
        manager.stopFinding();
    else
        manager.startFinding(*id);
}

void BluetoothInspector::track() {
    auto& manager = m_context.bluetoothTrackers();
    const auto device = shownBluetoothDevice(manager, m_selection.id(), m_context.now());
    if (device && device->live)
        manager.track(*device->live);
}

void BluetoothInspector::refresh() {
    const auto device =
        shownBluetoothDevice(m_context.bluetoothTrackers(), m_selection.id(), m_context.now());
    if (!device) {
        setCurrentWidget(m_nothing);
        return;
    }
    const FocusHeirs heirs(*m_page, {m_alert, m_track});
    m_page->follow(device->id.text());
    m_page->header().show(QStringLiteral("dot.radiowaves.left.and.right"),
                          device->isHeard ? Tint::green : Tint::secondary, device->name(),
                          captionOf(*device));
    showSignal(*device);
    m_tracking->setVisible(device->tracked != nullptr);
    m_location->setVisible(device->hasLocation());
    if (device->tracked)
        showTracking(*device->tracked);
    showActions(*device);
    setCurrentWidget(m_page);
}

void BluetoothInspector::showSignal(const ShownBluetoothDevice& device) {
    for (MetricRow* row : {m_proximity, m_strength, m_measurements})
        row->setVisible(device.isHeard);
    m_lastSeen->setVisible(device.live != nullptr);
    m_notHeard->setVisible(!device.isHeard);
    if (!device.live)
        return;
    const auto band = title(device.live->band);
    m_proximity->setValue(QString::fromUtf8(band.data(), static_cast<qsizetype>(band.size())));
    m_strength->setValue(strengthText(device.live->smoothedRSSI));
    m_measurements->setValue(QString::number(device.live->sampleCount));
    m_lastSeen->setValue(m_context.relativeTime(device.live->lastSeen));
}

void BluetoothInspector::showTracking(const TrackedBluetoothDevice& device) {
    const QString lastSeen = m_context.relativeTime(device.lastSeen);
    m_name->show(device.id.text(), shownLine(device.name));
    m_alert->show(device.lossAlertEnabled);
    m_delay->show(LossAlertMonitor::delayOf(device));
    m_lastHeard->setValue(lastSeen);
    m_lastSignal->setValue(strengthText(device.lastRSSI));
    m_status->setValue(lossAlertStatus(m_context.bluetoothTrackers().lossAlertState(device)));
    if (!device.latitude || !device.longitude)
        return;
    m_latitude->setValue(coordinateText(*device.latitude));
    m_longitude->setValue(coordinateText(*device.longitude));
    m_recorded->setValue(lastSeen);
}

void BluetoothInspector::showActions(const ShownBluetoothDevice& device) {
    const auto find = isFinding(m_context.bluetoothTrackers(), device.id) ? QStringLiteral("Stop Finding")
                                                                          : QStringLiteral("Find Nearby");
    m_find->setText(find);
    m_find->setAccessibleName(find);
    m_track->setVisible(!device.tracked);
    m_stopTracking->setVisible(device.tracked != nullptr);
}

} // namespace nightjar
