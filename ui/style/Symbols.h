// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

class QPainter;
class QRectF;

/// The drawn symbols of the interface: lines on a 24 x 24 grid, coloured and scaled when they are painted, so
/// that they are sharp on every screen. GUI thread.
namespace nightjar::Symbols {

/// An unknown name paints nothing.
void paint(QPainter& painter, const QRectF& where, const QString& name, const QColor& color);
/// For buttons; where it is disabled it is paler.
[[nodiscard]] QIcon icon(const QString& name, const QColor& color);
[[nodiscard]] bool exists(const QString& name);

} // namespace nightjar::Symbols
