// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/MovementTrail.h"

#include "core/mesh/MeshPositionHistory.h"

#include <algorithm>

namespace nightjar {

MovementTrail::MovementTrail(NightjarModel& model) : m_model(model) {
    connect(&model, &NightjarModel::selectedNodeIDChanged, this, [this] {
        if (m_node != m_model.selectedNodeID())
            hide();
    });
}

void MovementTrail::show(std::uint32_t number) {
    set(number);
}

void MovementTrail::hide() {
    set({});
}

void MovementTrail::set(std::optional<std::uint32_t> number) {
    if (number == m_node)
        return;
    m_node = number;
    Q_EMIT changed();
}

std::vector<MeshPosition> MovementTrail::positions(Date now) const {
    if (!m_node)
        return {};
    return MeshPositionHistory::positions(*m_node, m_model.history(), now - trailLength);
}

std::size_t MovementTrail::count(const NightjarModel& model, std::uint32_t number, Date now) {
    return static_cast<std::size_t>(std::ranges::count_if(model.history(), [&](const auto& position) {
        return position.nodeNumber == number && position.timestamp >= now - trailLength;
    }));
}

} // namespace nightjar
