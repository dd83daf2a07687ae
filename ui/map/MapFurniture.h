// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/map/MapMarker.h"

#include <QRectF>

class QPainter;

namespace nightjar::MapFurniture {

/// The circle's radius in points; `center` and `view` are in points too. It may be far larger than the view.
void paintCircle(QPainter& painter, const QRectF& view, QPointF center, double radius, const Colors& colors);

/// What a length on the ground looks like; a round number of metres or kilometres.
void paintScaleBar(QPainter& painter, const QRectF& view, double pointsPerMetre, const Colors& colors);

/// Whose map it is, in the lower right corner.
void paintAttribution(QPainter& painter, const QRectF& view, const QString& text, const Colors& colors);

/// The longest round length that is at most `longest` points; metres.
[[nodiscard]] double roundLength(double pointsPerMetre, double longest);

} // namespace nightjar::MapFurniture
