// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/window/WatchWarning.h"

#include "ui/common/Spoken.h"
#include "ui/common/SymbolView.h"
#include "ui/common/TextLabel.h"
#include "ui/mesh/GuardWarning.h"
#include "ui/text/ShownText.h"

#include <QHBoxLayout>

#include <algorithm>

namespace nightjar {

namespace {

bool missesBluetoothAlerts(const BluetoothTrackerManager& manager) {
    return std::ranges::any_of(manager.trackedDevices(), [&manager](const auto& device) {
        return device.lossAlertEnabled &&
               (!manager.isScanning() || manager.lossAlertState(device) == LossAlertState::blind);
    });
}

bool missesNetworkAlerts(const LocalNetworkBrowser& browser) {
    return !browser.isWatching() && std::ranges::any_of(browser.devices(), &DepartureMonitor::watches);
}

} // namespace

WatchWarning::WatchWarning(ViewContext& context, QWidget* parent)
    : QWidget(parent),
      m_context(context),
      m_symbol(new SymbolView(QStringLiteral("exclamationmark.triangle.fill"), 16, Tint::orange)),
      m_text(new ElidedLabel(TextSize::caption)),
      m_refresh([this] { refresh(); }) {
    speakAs(*this, Spoken::text);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(m_symbol);
    layout->addWidget(m_text, 1);

    using M = NightjarModel;
    for (const auto signal : {&M::nodesChanged, &M::connectedPortChanged, &M::parkedPositionChanged})
        connect(&context.model(), signal, &m_refresh, &Coalesced::request);
    using B = BluetoothTrackerManager;
    for (const auto signal :
         {&B::trackedDevicesChanged, &B::isScanningChanged, &B::isFindingChanged, &B::stateChanged})
        connect(&context.bluetoothTrackers(), signal, &m_refresh, &Coalesced::request);
    using N = LocalNetworkBrowser;
    for (const auto signal : {&N::devicesChanged, &N::isScanningChanged, &N::stateChanged})
        connect(&context.localNetwork(), signal, &m_refresh, &Coalesced::request);
    connect(&context, &ViewContext::timePassed, &m_refresh, &Coalesced::request);
    refresh();
}

void WatchWarning::refresh() {
    QStringList briefs;
    QStringList texts;
    if (const auto guard = GuardWarning::of(m_context.model(), m_context.now())) {
        briefs << guard->brief;
        texts << guard->text;
    }
    QStringList off;
    if (missesBluetoothAlerts(m_context.bluetoothTrackers()))
        off << QStringLiteral("Bluetooth");
    if (missesNetworkAlerts(m_context.localNetwork()))
        off << QStringLiteral("Local Network");
    if (!off.isEmpty()) {
        briefs << QStringLiteral("Alerts off: ") + off.join(QStringLiteral(", "));
        texts << QStringLiteral("Bluetooth and the Local Network are watched only while their section is on "
                                "screen and its scan runs.");
    }
    m_text->setFullText(briefs.join(QStringLiteral(" · ")));
    setAccessibleName(m_text->fullText());
    setAccessibleDescription(texts.join(u' '));
    setToolTip(plainToolTip(accessibleDescription()));
    setVisible(!briefs.isEmpty());
}

} // namespace nightjar
