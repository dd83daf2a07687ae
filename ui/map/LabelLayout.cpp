// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/LabelLayout.h"

#include <algorithm>

namespace nightjar {

std::vector<bool> labelsThatFit(const std::vector<QRectF>& labels, const std::vector<QRectF>& discs,
                                std::size_t certain) {
    std::vector<QRectF> taken = discs;
    std::vector<bool> fits(labels.size());
    for (std::size_t i = 0; i < labels.size(); ++i) {
        fits[i] = i < certain || std::ranges::none_of(
                                     taken, [&](const QRectF& other) { return other.intersects(labels[i]); });
        if (fits[i])
            taken.push_back(labels[i]);
    }
    return fits;
}

} // namespace nightjar
