// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/settings/RadioSettingsView.h"

#include "ui/common/Buttons.h"
#include "ui/common/Card.h"
#include "ui/common/InspectorPage.h"
#include "ui/common/TextLabel.h"
#include "ui/common/UnavailableView.h"
#include "ui/settings/LoRaForm.h"
#include "ui/settings/SettingsPage.h"
#include "ui/text/ShownText.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QShowEvent>
#include <QVBoxLayout>

#include <chrono>
#include <utility>

namespace nightjar {

namespace {

constexpr std::chrono::seconds betweenPortScans{2};

} // namespace

QString availablePortsText(std::size_t count) {
    return count == 0 ? QStringLiteral("No USB devices found")
                      : QStringLiteral("%1 USB device%2 available")
                            .arg(QString::number(count), count == 1 ? QString() : QStringLiteral("s"));
}

RadioSettingsView::RadioSettingsView(ViewContext& context, QWidget* parent)
    : QWidget(parent),
      m_context(context),
      m_model(context.model()),
      m_refresh([this] { refresh(); }),
      m_page(makeSettingsPage()) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_page, 1);
    m_bridge = m_page->addCard(QStringLiteral("Meshtastic Bridge"))->addMetric(QStringLiteral("Status"));
    buildConnection();
    buildLoRa();
    buildFoot();
    listen();
    followRadio();
    refresh();
}

void RadioSettingsView::buildConnection() {
    auto* card = m_page->addCard(QStringLiteral("USB connection"));
    m_status = card->addMetric(QStringLiteral("Status"));
    auto* connectedNote = card->addNote(QStringLiteral(
        "Radio settings below belong to the active base station. Disconnecting returns it to the available "
        "list."));
    auto* read = makeButton(QStringLiteral("Read from Radio"));
    auto* disconnect = makeButton(QStringLiteral("Disconnect"));
    m_whenConnected = {connectedNote, addButtonRow(*card, {read, disconnect})};

    m_ports = addTextRow(*card);
    auto* note = card->addNote(QStringLiteral("Available USB devices are shown under Meshtastic in the main "
                                              "window. Activate one there to use it as the base station."));
    auto* scan = makeButton(QStringLiteral("Scan Again"));
    m_whenUnconnected = {m_ports, note, addButtonRow(*card, {scan})};

    connect(read, &QPushButton::clicked, this, [this] { m_model.requestRadioSettings(); });
    connect(disconnect, &QPushButton::clicked, this, [this] { m_model.disconnect(); });
    connect(scan, &QPushButton::clicked, this, [this] { lookForPorts(); });
    putInTabOrder({read, disconnect, scan});
}

void RadioSettingsView::buildLoRa() {
    m_form = new LoRaForm;
    m_page->addWidget(m_form);
    m_noForm = m_page->addCard(QStringLiteral("LoRa"));
    auto* nothing = new UnavailableView;
    nothing->show(QStringLiteral("antenna.radiowaves.left.and.right.slash"),
                  QStringLiteral("Radio settings unavailable"),
                  QStringLiteral("Connect a Meshtastic radio by USB, then read its settings."));
    m_noForm->addRow(nothing);

    auto* card = m_page->addCard(QStringLiteral("Recommended Halvard Setup"));
    addTextRow(*card, QStringLiteral(
                          "The recommended setup uses EU868, LongFast, automatic frequency selection, three "
                          "hops and the legal regional transmit-power default. Channel names and encryption "
                          "keys are not changed."));
    m_recommended = makeButton(QStringLiteral("Recommended Halvard Setup"));
    addButtonRow(*card, {m_recommended});
    connect(m_form, &LoRaForm::edited, this, [this] {
        m_draft.values = m_form->values();
        m_refresh.request();
    });
    connect(m_recommended, &QPushButton::clicked, this, [this] {
        m_draft.applyRecommended();
        m_refresh.request();
    });
}

void RadioSettingsView::buildFoot() {
    layout()->addWidget(makeHairline());
    auto* foot = new QHBoxLayout;
    foot->setContentsMargins(16, 11, 16, 13);
    foot->setSpacing(12);
    m_state = new TextLabel({}, TextSize::caption, Tint::secondary);
    m_state->setWordWrap(true);
    foot->addWidget(m_state, 1);
    m_apply = makeButton(QStringLiteral("Apply to Radio"), ButtonLook::prominent);
    foot->addWidget(m_apply);
    static_cast<QVBoxLayout*>(layout())->addLayout(foot);
    connect(m_apply, &QPushButton::clicked, this, &RadioSettingsView::confirmApply);
    putInTabOrder(m_form->controls() + QList<QWidget*>{m_recommended, m_apply});
}

void RadioSettingsView::listen() {
    connect(&m_model, &NightjarModel::loraConfigChanged, this, &RadioSettingsView::followRadio);
    // A reading that brought nothing new still replaces the draft: what is shown is said to be the radio's.
    connect(&m_model, &NightjarModel::radioSettingsStateChanged, this, [this] {
        if (m_model.radioSettingsState() == RadioSettingsFlow::loadedState)
            followRadio();
    });
    connect(&m_model, &NightjarModel::connectedPortChanged, this, &RadioSettingsView::dropConfirmation);
    for (auto changed : {&NightjarModel::connectedPortChanged, &NightjarModel::availablePortsChanged,
                         &NightjarModel::connectionStateChanged, &NightjarModel::radioSettingsStateChanged})
        connect(&m_model, changed, &m_refresh, &Coalesced::request);
}

void RadioSettingsView::showEvent(QShowEvent* event) {
    // A window that comes back from the task bar was on screen all the time: the edits in it stay.
    if (!event->spontaneous()) {
        m_model.refreshPorts();
        m_model.requestRadioSettings();
        followRadio();
    }
    m_portTimer = m_context.platform().scheduler.every(betweenPortScans, [this] { lookForPorts(); });
    refresh();
}

void RadioSettingsView::hideEvent(QHideEvent* event) {
    m_portTimer.cancel();
    if (!event->spontaneous())
        dropConfirmation();
}

void RadioSettingsView::lookForPorts() {
    m_model.refreshPorts();
    m_refresh.request(); // the bridge may have been installed meanwhile
}

void RadioSettingsView::followRadio() {
    m_draft.follow(m_model.loraConfig());
    dropConfirmation();
    m_refresh.request();
}

/// What was to be confirmed is no longer what would happen.
void RadioSettingsView::dropConfirmation() {
    if (auto* open = std::exchange(m_confirmation, nullptr).data())
        open->reject();
}

bool RadioSettingsView::canApply() const {
    return m_model.connectedPort() && m_draft.hasChanges(m_model.loraConfig());
}

void RadioSettingsView::confirmApply() {
    if (m_confirmation || !canApply())
        return;
    m_confirmation =
        new AlertSheet(QStringLiteral("Apply radio settings?"), m_draft.changeSummary(m_model.loraConfig()),
                       {QStringLiteral("Apply"), QStringLiteral("Cancel")}, this);
    connect(m_confirmation, &QDialog::accepted, this, [this, settings = *m_draft.values] {
        m_confirmation = nullptr;
        m_model.applyRadioSettings(settings);
    });
    connect(m_confirmation, &QDialog::rejected, this, [this] { m_confirmation = nullptr; });
    m_confirmation->open();
}

void RadioSettingsView::refresh() {
    m_bridge->setValue(QString::fromStdString(m_model.bridgeStatus()));
    m_status->setValue(shownLine(m_model.connectionState()));
    m_ports->setText(availablePortsText(m_model.availablePorts().size()));
    const bool isConnected = m_model.connectedPort().has_value();
    for (QWidget* row : m_whenConnected)
        row->setVisible(isConnected);
    for (QWidget* row : m_whenUnconnected)
        row->setVisible(!isConnected);
    if (m_draft.values)
        m_form->show(*m_draft.values);
    m_form->setVisible(m_draft.values.has_value());
    m_noForm->setVisible(!m_draft.values);
    m_recommended->setEnabled(m_draft.values.has_value());
    m_state->setText(shownLine(m_model.radioSettingsState()));
    m_apply->setEnabled(canApply());
}

} // namespace nightjar
