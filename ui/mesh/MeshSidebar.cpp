// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/MeshSidebar.h"

#include "ui/common/StatusLine.h"
#include "ui/common/UnavailableView.h"
#include "ui/mesh/BaseStationPanel.h"
#include "ui/mesh/MeshRows.h"
#include "ui/mesh/NodeMenu.h"
#include "ui/rows/SidebarList.h"
#include "ui/text/ShownText.h"

#include <QVBoxLayout>

namespace nightjar {

namespace {

SidebarList* makeList(const ViewContext& context) {
    return new SidebarList(QStringLiteral("Mesh nodes"), [&context](const std::string& id) {
        const auto& model = context.model();
        const auto number = MeshRows::numberOf(id);
        const auto* node = MeshRows::find(model, number);
        if (!node)
            return Row{};
        const auto role = MeshRows::roleOf(model, node->number);
        return MeshRows::nodeRow(*node, role == MeshRows::Role::bicycle, model.localNodeID() == number,
                                 context);
    });
}

} // namespace

MeshSidebar::MeshSidebar(ViewContext& context, QWidget* parent)
    : QWidget(parent),
      m_context(context),
      m_bases(new BaseStationPanel(context)),
      m_list(makeList(context)),
      m_nobody(new UnavailableView),
      m_state(new StatusLine(QStringLiteral("cable.connector"))),
      m_refresh([this] { refresh(); }) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_bases);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_nobody, 3);
    layout->addWidget(m_state);
    m_nobody->show(QStringLiteral("sensor.tag.radiowaves.forward.fill"),
                   QStringLiteral("No remote nodes heard"),
                   QStringLiteral("Trackers must use the same EU868 channel and key as the connected base."));

    connect(m_list, &SidebarList::selected, this,
            [this](const std::string& id) { m_context.model().setSelectedNodeID(MeshRows::numberOf(id)); });
    connect(m_list, &SidebarList::menuRequested, this, &MeshSidebar::openMenu);
    auto& model = context.model();
    using M = NightjarModel;
    for (const auto signal : {&M::nodesChanged, &M::availablePortsChanged, &M::connectedPortChanged,
                              &M::knownBaseNamesChanged, &M::connectionStateChanged, &M::localNodeIDChanged,
                              &M::selectedNodeIDChanged, &M::guardProfileChanged})
        connect(&model, signal, &m_refresh, &Coalesced::request);
    connect(&context, &ViewContext::timePassed, &m_refresh, &Coalesced::request);
    refresh();
}

void MeshSidebar::refresh() {
    const auto& model = m_context.model();
    m_bases->refresh();
    m_list->setSections(MeshRows::sections(model));
    m_list->select(model.selectedNodeID() ? MeshRows::idOf(*model.selectedNodeID()) : std::string());
    m_nobody->setVisible(!MeshRows::hasRemoteNodes(model));
    m_state->setText(shownLine(model.connectionState()));
}

void MeshSidebar::openMenu(const std::string& id, QPoint at) {
    openNodeMenu(m_context, MeshRows::numberOf(id), this, at, [this] { Q_EMIT messageRequested(); });
}

} // namespace nightjar
