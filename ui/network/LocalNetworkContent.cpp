// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/network/LocalNetworkContent.h"

#include "ui/common/Buttons.h"
#include "ui/common/DetailView.h"
#include "ui/common/FocusHeirs.h"
#include "ui/common/SymbolLabel.h"
#include "ui/common/TextLabel.h"
#include "ui/common/UnavailableView.h"
#include "ui/network/LocalNetworkRows.h"
#include "ui/text/ShownText.h"

namespace nightjar {

LocalNetworkContent::LocalNetworkContent(ViewContext& context, Selection& selection, QWidget* parent)
    : QStackedWidget(parent),
      m_context(context),
      m_selection(selection),
      m_nothing(new UnavailableView),
      m_device(new DetailView),
      m_availability(m_device->addText(TextSize::headline, Tint::secondary)),
      m_services(m_device->addText(TextSize::body, Tint::secondary)),
      m_refresh([this] { refresh(); }) {
    m_device->addSpacing(4);
    m_note = m_device->addText(TextSize::body, Tint::secondary);
    m_device->addSpacing(14);
    m_device->addWidget(m_track = makeButton(QStringLiteral("Track This Device"), ButtonLook::large));
    m_device->addWidget(m_tracked = new SymbolLabel(TextSize::headline));
    m_tracked->show(QStringLiteral("checkmark"), Tint::green, QStringLiteral("Tracked by Nightjar"));
    addWidget(m_nothing);
    addWidget(m_device);

    connect(m_track, &QPushButton::clicked, this,
            [this] { m_context.localNetwork().track(m_selection.id()); });
    const auto& browser = context.localNetwork();
    connect(&browser, &LocalNetworkBrowser::devicesChanged, &m_refresh, &Coalesced::request);
    connect(&browser, &LocalNetworkBrowser::isScanningChanged, &m_refresh, &Coalesced::request);
    connect(&selection, &Selection::changed, &m_refresh, &Coalesced::request);
    connect(&context, &ViewContext::timePassed, &m_refresh, &Coalesced::request);
    refresh();
}

void LocalNetworkContent::refresh() {
    if (const auto* device = m_context.localNetwork().deviceWith(m_selection.id()))
        show(*device);
    else
        showNothing();
}

void LocalNetworkContent::showNothing() {
    const bool isScanning = m_context.localNetwork().isScanning();
    m_nothing->show(
        QStringLiteral("network"),
        isScanning ? QStringLiteral("Listening on the Local Network")
                   : QStringLiteral("Choose a Local Network device"),
        isScanning
            ? QStringLiteral("Select an available or previously seen device in the sidebar.")
            : QStringLiteral("Start a scan to discover devices that announce services through Bonjour."));
    setCurrentWidget(m_nothing);
}

void LocalNetworkContent::show(const LocalNetworkDevice& device) {
    const Tint tint = device.isOnline ? Tint::green : Tint::secondary;
    const FocusHeirs heirs(*m_device, {m_tracked});
    m_device->show(kindSymbol(device), tint, shownLine(device.name));
    m_availability->setText(device.isOnline ? QStringLiteral("Available on this network")
                                            : QStringLiteral("Not currently available"));
    m_availability->setTint(tint);
    const QString services = shownLine(device.serviceSummary());
    m_services->setText(breakable(services));
    m_services->setVisible(!services.isEmpty());
    m_note->setText(device.isOnline ? QStringLiteral("Nightjar can currently see one or more services "
                                                     "announced by this device.")
                                    : QStringLiteral("Last seen ") + m_context.relativeTime(device.lastSeen));
    m_track->setVisible(!device.isTracked);
    m_tracked->setVisible(device.isTracked);
    setCurrentWidget(m_device);
}

} // namespace nightjar
