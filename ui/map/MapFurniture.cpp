// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/MapFurniture.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>
#include <numbers>

namespace nightjar::MapFurniture {

namespace {

constexpr qreal margin = 12;
constexpr qreal longestBar = 110;
constexpr double drawableRadius = 8'000; ///< beyond it the rasterizer loses precision

QPolygonF roundPolygon(QPointF center, double radius) {
    constexpr int corners = 1'440;
    QPolygonF polygon;
    polygon.reserve(corners);
    for (int i = 0; i < corners; ++i) {
        const double angle = 2 * std::numbers::pi * i / corners;
        polygon << center + radius * QPointF(std::cos(angle), std::sin(angle));
    }
    return polygon;
}

QString lengthText(double metres) {
    return metres >= 1000 ? QStringLiteral("%1 km").arg(metres / 1000) : QStringLiteral("%1 m").arg(metres);
}

} // namespace

void paintCircle(QPainter& painter, const QRectF& view, QPointF center, double radius, const Colors& colors) {
    painter.setPen(QPen(colors.blue, 1.8));
    painter.setBrush(withAlpha(colors.blue, 38));
    if (radius <= drawableRadius)
        painter.drawEllipse(center, radius, radius);
    else
        painter.drawPolygon(clippedTo(roundPolygon(center, radius), view.adjusted(-8, -8, 8, 8)));
    painter.setPen(QPen(Qt::white, 2));
    painter.setBrush(colors.blue);
    painter.drawEllipse(center, 6, 6);
}

double roundLength(double pointsPerMetre, double longest) {
    double length = 1;
    for (double decade = 1; decade < 1e8; decade *= 10)
        for (const double step : {1.0, 2.0, 5.0})
            if (decade * step * pointsPerMetre <= longest)
                length = decade * step;
    return length;
}

void paintScaleBar(QPainter& painter, const QRectF& view, double pointsPerMetre, const Colors& colors) {
    const double length = roundLength(pointsPerMetre, longestBar);
    const QString text = lengthText(length);
    const qreal bar = length * pointsPerMetre;
    const QFontMetricsF metrics(painter.font());
    const qreal height = metrics.height() + 7;
    const QRectF box(margin, view.bottom() - margin - height, bar + metrics.horizontalAdvance(text) + 26,
                     height);
    painter.setPen(Qt::NoPen);
    painter.setBrush(withAlpha(colors.panel, 215));
    painter.drawRoundedRect(box, 6, 6);

    const QPointF left(box.left() + 8, box.center().y() + 3);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colors.text, 1.5));
    painter.drawPolyline(
        QPolygonF{left - QPointF(0, 7), left, left + QPointF(bar, 0), left + QPointF(bar, -7)});
    painter.drawText(box.adjusted(bar + 16, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, text);
}

void paintAttribution(QPainter& painter, const QRectF& view, const QString& text, const Colors& colors) {
    if (text.isEmpty())
        return;
    const QFontMetricsF metrics(painter.font());
    const QString shown = metrics.elidedText(text, Qt::ElideRight, view.width() / 2);
    const QSizeF size(metrics.horizontalAdvance(shown) + 12, metrics.height() + 5);
    const QRectF box(QPointF(view.right() - size.width(), view.bottom() - size.height()), size);
    painter.setPen(Qt::NoPen);
    painter.setBrush(withAlpha(colors.panel, 215));
    painter.drawRect(box);
    painter.setPen(colors.secondary);
    painter.drawText(box, Qt::AlignCenter, shown);
}

} // namespace nightjar::MapFurniture
