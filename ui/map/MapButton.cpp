// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/MapButton.h"

#include "ui/style/Colors.h"
#include "ui/style/Symbols.h"

#include <QPainter>
#include <QPainterPath>

namespace nightjar {

namespace {

constexpr QSize symbolButton{34, 30};
constexpr qreal radius = 8;

QPainterPath outline(const QRectF& box, MapButton::Corners corners) {
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    path.addRoundedRect(box, radius, radius);
    if (corners == MapButton::Corners::top)
        path.addRect(box.adjusted(0, radius, 0, 0));
    if (corners == MapButton::Corners::bottom)
        path.addRect(box.adjusted(0, 0, 0, -radius));
    return path.simplified();
}

} // namespace

MapButton::MapButton(const QString& symbol, const QString& name, QWidget* parent, Corners corners)
    : QToolButton(parent), m_symbol(symbol), m_corners(corners) {
    setAccessibleName(name);
    setToolTip(name);
    setFocusPolicy(Qt::TabFocus);
}

MapButton::MapButton(const QString& text, QWidget* parent) : QToolButton(parent) {
    setText(text);
    setAccessibleName(text);
    setFocusPolicy(Qt::TabFocus);
}

QSize MapButton::sizeHint() const {
    return m_symbol.isEmpty() ? fontMetrics().size(Qt::TextSingleLine, text()) + QSize(22, 12) : symbolButton;
}

void MapButton::paintEvent(QPaintEvent*) {
    const Colors& colors = Colors::of(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, m_corners == Corners::top ? 0.5 : -0.5);
    const QColor back = isDown() ? colors.controlPressed : underMouse() ? colors.controlHover : colors.panel;
    painter.setPen(QPen(colors.cardBorder, 1));
    painter.setBrush(isDown() || underMouse() ? back : withAlpha(back, 235));
    painter.drawPath(outline(box, m_corners));
    if (m_symbol.isEmpty()) {
        painter.setPen(colors.text);
        painter.drawText(rect(), Qt::AlignCenter, text());
    } else {
        Symbols::paint(painter, QRectF(QRectF(rect()).center() - QPointF(8, 8), QSizeF(16, 16)), m_symbol,
                       isEnabled() ? colors.text : colors.tertiary);
    }
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange)) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(withAlpha(colors.accent, 170), 2));
        painter.drawRoundedRect(QRectF(rect()).adjusted(2, 2, -2, -2), radius - 2, radius - 2);
    }
}

} // namespace nightjar
