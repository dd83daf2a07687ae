// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridge/scenario/Scenario.h"

#include <array>
#include <span>

namespace nightjar::bridge {

/// Which scripted fault meets a command. The first entry of the file that fits counts.
class FaultPlan {
public:
    explicit FaultPlan(std::span<const Fault> faults) : m_faults(faults) {}

    /// Counts the command. Null where everything goes well.
    [[nodiscard]] const Fault* meet(MeshtasticBridgeCommand command);

private:
    std::span<const Fault> m_faults;
    std::array<std::uint32_t, meshtasticBridgeCommandNames.size()> m_counts{};
};

/// Lines that are no good in every way that a client must bear: no JSON, ill-formed UTF-8, an unknown event,
/// fields that are missing or out of range, an empty line.
[[nodiscard]] std::string_view garbageLines();

} // namespace nightjar::bridge
