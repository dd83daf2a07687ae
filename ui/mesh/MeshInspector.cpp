// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/MeshInspector.h"

#include "ui/common/Buttons.h"
#include "ui/common/Card.h"
#include "ui/common/FocusHeirs.h"
#include "ui/common/InspectorPage.h"
#include "ui/common/UnavailableView.h"
#include "ui/mesh/GuardControls.h"
#include "ui/mesh/MeshRows.h"
#include "ui/mesh/NodeMenu.h"
#include "ui/text/ShownText.h"

#include <algorithm>

namespace nightjar {

MeshInspector::MeshInspector(ViewContext& context, MovementTrail& trail, QWidget* parent)
    : QStackedWidget(parent),
      m_context(context),
      m_trail(trail),
      m_nothing(new UnavailableView),
      m_page(new InspectorPage),
      m_guard(new GuardControls(context)),
      m_refresh([this] { refresh(); }) {
    addWidget(m_nothing);
    addWidget(m_page);
    m_nothing->show(QStringLiteral("sensor.tag.radiowaves.forward.fill"), QStringLiteral("Select a device"),
                    QStringLiteral("Choose a tracker to see its status and history."));
    buildStatus();
    buildPosition();
    m_page->addWidget(m_guard);
    buildActions();

    using M = NightjarModel;
    for (const auto signal : {&M::nodesChanged, &M::historyChanged, &M::selectedNodeIDChanged,
                              &M::localNodeIDChanged, &M::parkingRadiusChanged, &M::parkedPositionChanged,
                              &M::parkingStatusChanged, &M::guardProfileChanged})
        connect(&context.model(), signal, &m_refresh, &Coalesced::request);
    connect(&context, &ViewContext::timePassed, &m_refresh, &Coalesced::request);
    connect(&trail, &MovementTrail::changed, &m_refresh, &Coalesced::request);
    refresh();
}

void MeshInspector::buildStatus() {
    auto* card = m_page->addCard(QStringLiteral("Status"));
    m_connection = card->addMetric(QStringLiteral("Connection"));
    m_hardware = card->addMetric(QStringLiteral("Hardware"));
    m_power = card->addMetric(QStringLiteral("Power"));
    m_signal = card->addMetric(QStringLiteral("Signal"));
    m_lastSeen = card->addMetric(QStringLiteral("Last seen"));
}

void MeshInspector::buildPosition() {
    auto* card = m_page->addCard(QStringLiteral("Latest position"));
    m_latitude = card->addMetric(QStringLiteral("Latitude"));
    m_longitude = card->addMetric(QStringLiteral("Longitude"));
    m_received = card->addMetric(QStringLiteral("Received"));
    m_points = card->addMetric(QStringLiteral("Recorded points"));
    m_movement = makeButton(QStringLiteral("Show Movement"));
    connect(m_movement, &QPushButton::clicked, this, &MeshInspector::toggleMovement);
    card->addControl(QStringLiteral("Last 24 hours"), m_movement);
}

void MeshInspector::buildActions() {
    auto* message = makeButton(QStringLiteral("Message"));
    connect(message, &QPushButton::clicked, this, [this] {
        auto& model = m_context.model();
        if (!model.selectedNodeID())
            return;
        model.setMessageRecipient(model.selectedNodeID());
        Q_EMIT messageRequested();
    });
    m_guardButton = makeButton(QStringLiteral("Guard This Device"), ButtonLook::prominent);
    connect(m_guardButton, &QPushButton::clicked, this, [this] {
        if (const auto selected = m_context.model().selectedNodeID())
            guard(m_context.model(), *selected);
    });
    m_actions = m_page->addButtons({message, m_guardButton});
}

void MeshInspector::toggleMovement() {
    const auto selected = m_context.model().selectedNodeID();
    if (!selected || m_trail.movementNodeID() == selected)
        m_trail.hide();
    else
        m_trail.show(*selected);
}

void MeshInspector::refresh() {
    const auto& model = m_context.model();
    const auto* node = MeshRows::find(model, model.selectedNodeID());
    setCurrentWidget(node ? static_cast<QWidget*>(m_page) : m_nothing);
    if (!node)
        return;
    m_page->follow(MeshRows::idOf(node->number));
    const auto role = MeshRows::roleOf(model, node->number);
    m_page->header().show(MeshRows::symbolOf(role), MeshRows::tintOf(role), MeshRows::title(*node),
                          MeshRows::identity(*node));
    refreshStatus(*node);
    refreshPosition(*node);
    const bool isGuarded = model.guardedNodeID() == node->number;
    {
        const FocusHeirs heirs(*m_page, {m_guard->profile(), m_guardButton});
        m_guard->setVisible(isGuarded);
        m_actions->setVisible(!isGuarded);
    }
    if (isGuarded)
        m_guard->refresh(*node);
}

void MeshInspector::refreshStatus(const MeshNode& node) {
    m_connection->setValue(
        MeshRows::connectionDescription(node, m_context.model().localNodeID(), m_context.now()));
    m_hardware->setValue(node.hardware.empty() ? QStringLiteral("Not reported") : shownLine(node.hardware));
    m_power->setValue(MeshRows::power(node));
    m_signal->setValue(MeshRows::signal(node));
    m_lastSeen->setValue(MeshRows::lastSeen(node, m_context));
}

void MeshInspector::refreshPosition(const MeshNode& node) {
    const auto& model = m_context.model();
    const QString none = QStringLiteral("Not reported");
    m_latitude->setValue(node.position ? MeshRows::degrees(node.position->latitude) : none);
    m_longitude->setValue(node.position ? MeshRows::degrees(node.position->longitude) : none);
    m_received->setValue(node.position ? m_context.relativeTime(node.position->timestamp) : none);
    m_points->setValue(
        QString::number(std::ranges::count(model.history(), node.number, &MeshPosition::nodeNumber)));

    const bool isShown = m_trail.movementNodeID() == node.number;
    const bool canShow = MovementTrail::count(model, node.number, m_context.now()) >= 2;
    const QString help = canShow || isShown
                             ? QStringLiteral("Show movement recorded during the last 24 hours.")
                             : QStringLiteral("At least two positions from the last 24 hours are needed.");
    m_movement->setText(isShown ? QStringLiteral("Hide Movement") : QStringLiteral("Show Movement"));
    m_movement->setAccessibleName(m_movement->text());
    m_movement->setEnabled(canShow || isShown);
    m_movement->setToolTip(plainToolTip(help));
    m_movement->setAccessibleDescription(help);
}

} // namespace nightjar
