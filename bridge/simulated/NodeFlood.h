// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridge/scenario/Scenario.h"
#include "bridge/simulated/WorldClock.h"

#include <string>
#include <vector>

namespace nightjar::bridge {

/// Node lines faster than any client reads them: each node's line is made once, then only its dates and the
/// identity of its fix are written over. The nodes take turns; the last round carries the present date.
class NodeFlood {
public:
    NodeFlood(const Fault& fault, Place around, Date now, std::uint64_t seed);

    /// Appends whole lines until `bytes` are reached or no line is left.
    void generate(std::string& out, std::size_t bytes);
    [[nodiscard]] bool isDone() const { return m_nextLine == m_lines; }
    [[nodiscard]] const std::optional<std::string>& closingStatus() const { return m_closingStatus; }

private:
    struct Template {
        std::string line;
        std::vector<std::size_t> dates;
        std::size_t fix =
            std::string::npos; ///< where the last digits of the fix's identity are; npos = it stays
    };

    [[nodiscard]] Template makeTemplate(std::uint32_t index, Place around, bool newPositions,
                                        std::uint64_t seed);
    [[nodiscard]] std::string dateOfRound(std::uint64_t round) const;

    std::uint64_t m_lines;
    std::uint64_t m_nextLine = 0;
    std::uint64_t m_rounds;
    Date m_now;
    std::optional<std::string> m_closingStatus;
    std::vector<Template> m_templates;
    std::string m_date;        ///< of the present round
    std::string m_roundDigits; ///< the present round, twelve hexadecimal digits
};

} // namespace nightjar::bridge
