// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridge/scenario/ObjectReader.h"
#include "bridge/scenario/Scenario.h"

/// The readers of the parts of a scenario file. Each reports what is wrong to the reader's problem and
/// finishes the objects that it opens itself.
namespace nightjar::bridge {

/// The longest time that a scenario may name, a week.
inline constexpr double longestSeconds = 604'800;

[[nodiscard]] NodePlan readNode(ObjectReader& reader);
[[nodiscard]] MovementPlan readMovement(ObjectReader& reader);
[[nodiscard]] std::optional<Place> readPlace(const json::JsonValue& value, const std::string& path,
                                             Problem& problem);
[[nodiscard]] RadioPlan readRadio(ObjectReader& reader);
[[nodiscard]] Fault readFault(ObjectReader& reader);
/// Script, random texts and replies.
void readChatter(ObjectReader& scenario, Scenario& into);

} // namespace nightjar::bridge
