// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/FloatingPanel.h"

#include "ui/style/Colors.h"

#include <QPainter>

namespace nightjar {

void FloatingPanel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto& colors = Colors::of(this);
    painter.setPen(QPen(colors.controlBorder, 1));
    painter.setBrush(withAlpha(colors.panel, 240));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 11, 11);
}

} // namespace nightjar
