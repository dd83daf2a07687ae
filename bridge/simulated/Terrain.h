// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridge/scenario/Scenario.h"

#include <span>
#include <vector>

/// Distances and ways in the flat surroundings of one place, exact enough within some kilometres.
namespace nightjar::bridge {

[[nodiscard]] Place displaced(Place from, double metersNorth, double metersEast);
[[nodiscard]] double metersBetween(Place from, Place to);
/// In steps of 1e-7 degree, as radios tell places.
[[nodiscard]] Place rounded(Place place);

/// A line through places, walked by distance.
class Way {
public:
    Way(Place start, std::span<const Place> then);

    [[nodiscard]] double meters() const { return m_meters; }
    [[nodiscard]] Place end() const { return m_places.back(); }
    /// Before the start counts as the start, behind the end as the end.
    [[nodiscard]] Place at(double meters) const;

private:
    std::vector<Place> m_places;
    double m_meters = 0;
};

} // namespace nightjar::bridge
