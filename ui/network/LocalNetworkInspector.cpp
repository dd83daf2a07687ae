// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/network/LocalNetworkInspector.h"

#include "ui/common/Buttons.h"
#include "ui/common/Card.h"
#include "ui/common/DelayPicker.h"
#include "ui/common/FocusHeirs.h"
#include "ui/common/InspectorPage.h"
#include "ui/common/SwitchControl.h"
#include "ui/common/TextLabel.h"
#include "ui/common/UnavailableView.h"
#include "ui/network/LocalNetworkRows.h"
#include "ui/network/ServiceRow.h"
#include "ui/text/ShownText.h"

namespace nightjar {

namespace {

/// Of a device whose record in the file is out of all proportion.
constexpr std::size_t mostServiceRows = 60;

std::vector<DelayChoice> delayChoices() {
    return {{QStringLiteral("5 minutes"), 300},  {QStringLiteral("10 minutes"), 600},
            {QStringLiteral("15 minutes"), 900}, {QStringLiteral("30 minutes"), 1800},
            {QStringLiteral("1 hour"), 3600},    {QStringLiteral("1 day"), 86400}};
}

} // namespace

LocalNetworkInspector::LocalNetworkInspector(ViewContext& context, Selection& selection, QWidget* parent)
    : QStackedWidget(parent),
      m_context(context),
      m_selection(selection),
      m_nothing(new UnavailableView),
      m_page(new InspectorPage),
      m_refresh([this] { refresh(); }) {
    m_nothing->show(QStringLiteral("network"), QStringLiteral("Select a Local Network device"),
                    QStringLiteral("Choose a device to see when it was last available and which services it "
                                   "announced."));
    addWidget(m_nothing);
    addWidget(m_page);
    addStatus();
    addTracking();
    m_services = m_page->addCard(QStringLiteral("Services"));
    m_page->addWidget(m_forget = makeButton(QStringLiteral("Forget Device"), ButtonLook::destructive));
    connectControls();

    const auto& browser = context.localNetwork();
    using N = LocalNetworkBrowser;
    for (const auto signal : {&N::devicesChanged, &N::isScanningChanged, &N::stateChanged})
        connect(&browser, signal, &m_refresh, &Coalesced::request);
    connect(&selection, &Selection::changed, &m_refresh, &Coalesced::request);
    connect(&context, &ViewContext::timePassed, &m_refresh, &Coalesced::request);
    refresh();
}

void LocalNetworkInspector::addStatus() {
    auto* card = m_page->addCard(QStringLiteral("Status"));
    m_state = card->addMetric(QStringLiteral("State"));
    m_lastSeen = card->addMetric(QStringLiteral("Last seen"));
    m_domain = card->addMetric(QStringLiteral("Domain"));
    m_interface = card->addMetric(QStringLiteral("Interface"));
}

void LocalNetworkInspector::addTracking() {
    const auto alert = QStringLiteral("Alert when this device leaves the network");
    m_tracking = m_page->addCard(QStringLiteral("Tracking"));
    m_tracking->addControl(alert, m_alert = new SwitchControl(alert));
    m_tracking->addControl(QStringLiteral("Alert after"),
                           m_delay = new DelayPicker(QStringLiteral("Alert after"), delayChoices()));
    m_tracking->addNote(QStringLiteral("The alarm is armed only after this Mac sees the device online. "
                                       "Nightjar sends one alert when it leaves and one update when it "
                                       "returns."));
    m_monitor = m_tracking->addMetric(QStringLiteral("Monitor"));
    m_unwatched = m_tracking->addNote(
        QStringLiteral("The Local Network is not being watched at present: no alert can come."));
    m_unwatched->setTint(Tint::orange);
    m_tracking->addButton(m_stopTracking = makeButton(QStringLiteral("Stop Tracking")));
    m_page->addWidget(m_track = makeButton(QStringLiteral("Track This Device"), ButtonLook::prominent));
}

void LocalNetworkInspector::connectControls() {
    auto& browser = m_context.localNetwork();
    connect(m_alert, &QCheckBox::clicked, this,
            [this, &browser](bool isOn) { browser.setLossAlert(isOn, std::string(id())); });
    connect(m_delay, &DelayPicker::chosen, this,
            [this, &browser](double seconds) { browser.setLossAlertDelay(seconds, std::string(id())); });
    connect(m_stopTracking, &QPushButton::clicked, this,
            [this, &browser] { browser.stopTracking(std::string(id())); });
    connect(m_track, &QPushButton::clicked, this, [this, &browser] { browser.track(std::string(id())); });
    connect(m_forget, &QPushButton::clicked, this, [this, &browser] { browser.forget(std::string(id())); });
}

void LocalNetworkInspector::refresh() {
    if (const auto* device = m_context.localNetwork().deviceWith(id())) {
        show(*device);
        setCurrentWidget(m_page);
    } else {
        setCurrentWidget(m_nothing);
    }
}

void LocalNetworkInspector::show(const LocalNetworkDevice& device) {
    const FocusHeirs heirs(*m_page, {m_alert, m_track});
    m_page->follow(device.id);
    m_page->header().show(kindSymbol(device), device.isOnline ? Tint::green : Tint::secondary,
                          shownLine(device.name),
                          device.isOnline ? QStringLiteral("Available now") : QStringLiteral("Seen before"));
    m_state->setValue(device.isOnline ? QStringLiteral("Available") : QStringLiteral("Not currently seen"));
    m_lastSeen->setValue(m_context.relativeTime(device.lastSeen));
    m_domain->setValue(domainText(device));
    m_interface->setValue(interfaceText(device));
    m_tracking->setVisible(device.isTracked);
    m_track->setVisible(!device.isTracked);
    m_alert->show(device.lossAlertEnabled);
    m_delay->show(device.lossAlertDelay);
    m_monitor->setVisible(device.lossAlertEnabled);
    m_unwatched->setVisible(device.lossAlertEnabled && !m_context.localNetwork().isWatching());
    m_monitor->setValue(shownLine(m_context.localNetwork().monitoringStatus(device)));
    showServices(device.serviceTypes);
}

void LocalNetworkInspector::showServices(const std::vector<std::string>& types) {
    m_services->setVisible(!types.empty());
    if (types == m_shownTypes)
        return;
    m_shownTypes = types;
    for (QWidget* row : std::exchange(m_serviceRows, {}))
        delete row;
    for (const auto& type : types) {
        if (m_serviceRows.size() == mostServiceRows)
            break;
        m_serviceRows.push_back(new ServiceRow(type));
        m_services->addRow(m_serviceRows.back());
    }
}

} // namespace nightjar
