// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/mesh/NightjarModel.h"

#include <QObject>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace nightjar {

/// How far back the movement of a node is shown.
inline constexpr Seconds trailLength{24 * 3600};

/// The node whose movement of the last 24 hours the map shows. It goes when another node is selected. Main
/// thread.
class MovementTrail final : public QObject {
    Q_OBJECT
public:
    explicit MovementTrail(NightjarModel& model);

    [[nodiscard]] std::optional<std::uint32_t> movementNodeID() const { return m_node; }
    void show(std::uint32_t number);
    void hide();

    /// Oldest first; empty while no movement is shown.
    [[nodiscard]] std::vector<MeshPosition> positions(Date now) const;
    /// The positions of a node that would be shown.
    [[nodiscard]] static std::size_t count(const NightjarModel& model, std::uint32_t number, Date now);

Q_SIGNALS:
    void changed();

private:
    void set(std::optional<std::uint32_t> number);

    NightjarModel& m_model;
    std::optional<std::uint32_t> m_node;
};

} // namespace nightjar
