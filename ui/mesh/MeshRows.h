// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/mesh/NightjarModel.h"
#include "core/mesh/MeshNode.h"
#include "ui/common/ViewContext.h"
#include "ui/rows/Row.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What the mesh side shows of its records, without a widget.
namespace nightjar::MeshRows {

/// The identity of a node's row.
[[nodiscard]] std::string idOf(std::uint32_t number);
[[nodiscard]] std::optional<std::uint32_t> numberOf(const std::string& id);

/// "!0000002a", the name of last resort.
[[nodiscard]] QString hexName(std::uint32_t number);
[[nodiscard]] QString title(const MeshNode& node);
/// What stands under the title of an inspector: the other name of a node that has one.
[[nodiscard]] QString identity(const MeshNode& node);

enum class Role { base, bicycle, other };
[[nodiscard]] Role roleOf(const NightjarModel& model, std::uint32_t number);
[[nodiscard]] QString symbolOf(Role role);
[[nodiscard]] Tint tintOf(Role role);

[[nodiscard]] Row nodeRow(const MeshNode& node, bool isBike, bool isBase, const ViewContext& context);
[[nodiscard]] QString lastSeen(const MeshNode& node, const ViewContext& context);

[[nodiscard]] QString connectionDescription(const MeshNode& node, std::optional<std::uint32_t> base,
                                            Date now);
[[nodiscard]] QString power(const MeshNode& node);
[[nodiscard]] QString signal(const MeshNode& node);
[[nodiscard]] QString degrees(double value);
[[nodiscard]] QString metres(double value);

/// The name of a base radio that was on this port before, else one made of the port.
[[nodiscard]] QString portName(const NightjarModel& model, const std::string& port);
[[nodiscard]] QString channelName(const NightjarModel& model, std::uint32_t channel);

/// The guarded node, those heard directly (the base first) and the others, each group under its title.
[[nodiscard]] std::vector<RowSection> sections(const NightjarModel& model);
[[nodiscard]] bool hasRemoteNodes(const NightjarModel& model);
[[nodiscard]] const MeshNode* find(const NightjarModel& model, std::optional<std::uint32_t> number);

} // namespace nightjar::MeshRows
