// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "program/DemoUser.h"

#include "app/mesh/NightjarModel.h"

#include <algorithm>

namespace nightjar {

DemoUser::DemoUser(NightjarModel& model) : m_model(model) {
    // Queued: a user acts on what has been shown, never in the middle of a change.
    connect(&model, &NightjarModel::nodesChanged, this, &DemoUser::guardBicycle, Qt::QueuedConnection);
}

void DemoUser::guardBicycle() {
    if (m_model.parkedPosition())
        return;
    const auto& nodes = m_model.nodes();
    const auto bicycle = std::ranges::find_if(
        nodes, [](const MeshNode& node) { return node.longName == "Bicycle" && node.position.has_value(); });
    if (bicycle == nodes.end())
        return;
    m_model.setGuardProfile(GuardProfile::bicycle);
    m_model.setGuarded(MeshNode(*bicycle));
    m_model.markGuardedPosition();
}

} // namespace nightjar
