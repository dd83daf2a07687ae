// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/map/MapGeometry.h"
#include "ui/style/Colors.h"

#include <QString>

namespace nightjar {

/// One thing on the map. Titles are shown as plain text and cut short, whatever they hold.
struct MapMarker {
    QString id;
    MapCoordinate at;
    QString title;
    QString symbol;
    Tint tint = Tint::blue;
    QString accessibleText; ///< instead of the title, when there is more to say

    bool operator==(const MapMarker&) const = default;
};

/// A circle on the ground round a marked position.
struct MapCircle {
    MapCoordinate center;
    double metres = 0;
    QString title;

    bool operator==(const MapCircle&) const = default;
};

/// One line of plain text: without control characters and with an end.
[[nodiscard]] QString plainLine(const QString& text, qsizetype longest);

} // namespace nightjar
