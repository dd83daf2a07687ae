// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/GuardWarning.h"

#include "ui/map/MapGeometry.h"
#include "ui/mesh/MeshRows.h"

namespace nightjar {

namespace {

/// As long as a node counts as heard.
constexpr Seconds oldestPosition{3600};

std::optional<GuardWarning> warningOf(const MeshNode& node, const MeshPosition& marked, Date now) {
    if (node.reachability(now) == MeshNodeReachability::stale())
        return GuardWarning{QStringLiteral("Guarded device not heard recently"),
                            QStringLiteral("The guarded device has not been heard for more than an hour. It "
                                           "may have moved since.")};
    if (!node.position || !isOnEarth({node.position->latitude, node.position->longitude}))
        return GuardWarning{
            QStringLiteral("Guarded device tells no position"),
            QStringLiteral("The guarded device tells no position: its movement is not seen.")};
    // A device whose clock was ahead when it was marked: until then the guard takes all it tells for old.
    if (node.position->timestamp < marked.timestamp)
        return GuardWarning{QStringLiteral("Guard blind · marked position is newer"),
                            QStringLiteral("The latest position is older than the marked one and is not "
                                           "compared with it. Mark the position again.")};
    if (now - node.position->timestamp > oldestPosition)
        return GuardWarning{QStringLiteral("Position of guarded device is old"),
                            QStringLiteral("The latest position of the guarded device is more than an hour "
                                           "old. It may have moved since.")};
    return std::nullopt;
}

} // namespace

std::optional<GuardWarning> GuardWarning::of(const NightjarModel& model, Date now) {
    const auto guarded = model.guardedNodeID();
    if (!guarded)
        return std::nullopt;
    const auto& marked = model.parkedPosition();
    if (!marked)
        return GuardWarning{
            QStringLiteral("Guard without a marked position"),
            QStringLiteral("No position of the guarded device is marked: no alarm can come.")};
    if (!model.connectedPort())
        return GuardWarning{QStringLiteral("Guard blind · no base radio"),
                            QStringLiteral("No base radio is connected: movement of the guarded device is "
                                           "not seen.")};
    const auto* node = MeshRows::find(model, guarded);
    if (!node)
        return GuardWarning{QStringLiteral("Guarded device not heard yet"),
                            QStringLiteral("The guarded device has not been heard since the base radio was "
                                           "connected. It may have moved.")};
    return warningOf(*node, *marked, now);
}

} // namespace nightjar
