// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridge/scenario/Scenario.h"
#include "core/base/Random.h"

#include <memory>

namespace nightjar::bridge {

/// Where one node is, in the course of the world's time. Asked with times that never run backwards.
class Movement {
public:
    virtual ~Movement() = default;
    /// The fix that the node's receiver gives at that time.
    [[nodiscard]] virtual Place fix(double worldSeconds) = 0;
    [[nodiscard]] virtual bool isMoving(double worldSeconds) const = 0;
};

[[nodiscard]] std::unique_ptr<Movement> makeMovement(const MovementPlan& plan, Place start, Random random);

} // namespace nightjar::bridge
