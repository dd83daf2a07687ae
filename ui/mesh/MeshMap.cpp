// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/MeshMap.h"

#include "ui/common/FloatingPanel.h"
#include "ui/common/UnavailableView.h"
#include "ui/mesh/MeshRows.h"
#include "ui/mesh/NodeMenu.h"

#include <QVBoxLayout>

#include <utility>

namespace nightjar {

namespace {

constexpr double minimumSpan = 0.02;

MapCoordinate coordinateOf(const MeshPosition& position) {
    return {position.latitude, position.longitude};
}

} // namespace

MeshMap::MeshMap(ViewContext& context, MovementTrail& trail, QWidget* parent)
    : QWidget(parent),
      m_context(context),
      m_trail(trail),
      m_preferences(context.platform().preferences),
      m_map(new MapView(context.tiles())),
      m_waiting(new UnavailableView),
      m_refresh([this] { refresh(); }) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_map);
    auto* plate = new FloatingPanel(this);
    auto* plateLayout = new QVBoxLayout(plate);
    plateLayout->setContentsMargins(0, 0, 0, 0);
    plateLayout->addWidget(m_waiting);
    plate->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_waiting->show(QStringLiteral("mappin.circle.fill"), QStringLiteral("Waiting for a position"),
                    QStringLiteral("The map will update when a tracker sends GPS coordinates."));

    connect(m_map, &MapView::regionChanged, this,
            [this](const MapRegion& region) { m_preferences.setRegion(region); });
    connect(m_map, &MapView::markerActivated, this, [this](const QString& id) {
        m_context.model().setSelectedNodeID(MeshRows::numberOf(id.toStdString()));
    });
    connect(m_map, &MapView::markerMenuRequested, this, [this](const QString& id, QPoint at) {
        openNodeMenu(m_context, MeshRows::numberOf(id.toStdString()), this, at,
                     [this] { Q_EMIT messageRequested(); });
    });
    connect(m_map, &MapView::streetMapRequested, &context, &ViewContext::streetMapRequested);
    using M = NightjarModel;
    for (const auto signal :
         {&M::nodesChanged, &M::historyChanged, &M::selectedNodeIDChanged, &M::localNodeIDChanged,
          &M::parkedPositionChanged, &M::parkingRadiusChanged, &M::guardProfileChanged})
        connect(&context.model(), signal, &m_refresh, &Coalesced::request);
    connect(&trail, &MovementTrail::changed, &m_refresh, &Coalesced::request);
    connect(&context, &ViewContext::timePassed, this, [this] {
        if (m_trail.movementNodeID())
            m_refresh.request(); // its oldest positions leave it
    });
    refresh();
}

std::vector<MapCoordinate> MeshMap::positionedMeshtasticDevices(const NightjarModel& model) {
    std::vector<MapCoordinate> positions;
    for (const auto& node : model.nodes()) {
        if (node.position && isOnEarth(coordinateOf(*node.position)))
            positions.push_back(coordinateOf(*node.position));
    }
    return positions;
}

void MeshMap::fitDevices() {
    m_map->fitPositions(positionedMeshtasticDevices(m_context.model()), minimumSpan);
}

std::vector<MapMarker> MeshMap::markers() const {
    const auto& model = m_context.model();
    std::vector<MapMarker> markers;
    for (const auto& node : model.nodes()) {
        if (!node.position)
            continue;
        const auto role = MeshRows::roleOf(model, node.number);
        markers.push_back({.id = QString::fromStdString(MeshRows::idOf(node.number)),
                           .at = coordinateOf(*node.position),
                           .title = MeshRows::title(node),
                           .symbol = MeshRows::symbolOf(role),
                           .tint = MeshRows::tintOf(role),
                           .accessibleText = MeshRows::title(node)});
    }
    return markers;
}

void MeshMap::refresh() {
    const auto& model = m_context.model();
    m_map->setMarkers(markers());
    m_map->setSelectedMarker(
        model.selectedNodeID() ? QString::fromStdString(MeshRows::idOf(*model.selectedNodeID())) : QString());
    std::optional<MapCircle> circle;
    if (const auto& parked = model.parkedPosition(); parked && model.guardedNodeID())
        circle = MapCircle{coordinateOf(*parked), model.parkingRadius(), QStringLiteral("Marked position")};
    m_map->setCircle(circle);
    std::vector<MapCoordinate> trail;
    for (const auto& position : m_trail.positions(m_context.now()))
        trail.push_back(coordinateOf(position));
    m_map->setTrail(std::move(trail));
    m_waiting->parentWidget()->setVisible(positionedMeshtasticDevices(model).empty());
    if (isVisible())
        fitOnce();
}

void MeshMap::fitOnce() {
    if (m_hasFittedMeshtasticDevices)
        return;
    auto positions = positionedMeshtasticDevices(m_context.model());
    if (positions.empty())
        return;
    m_hasFittedMeshtasticDevices = true;
    m_map->fitPositions(positions, minimumSpan);
}

void MeshMap::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!std::exchange(m_hasRestored, true)) {
        if (const auto kept = m_preferences.region())
            m_map->showRegion(*kept);
    }
    fitOnce();
}

void MeshMap::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placeOverlay();
}

void MeshMap::placeOverlay() {
    auto* plate = m_waiting->parentWidget();
    const QSize size(std::min(340, width() - 40), std::min(190, height() - 40));
    plate->setGeometry(QRect(QPoint((width() - size.width()) / 2, (height() - size.height()) / 2), size));
}

} // namespace nightjar
