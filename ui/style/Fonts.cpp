// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/style/Fonts.h"

#include <QApplication>

namespace nightjar {

namespace {

void scale(QFont& font, qreal factor) {
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * factor);
    else
        font.setPixelSize(qRound(font.pixelSize() * factor));
}

} // namespace

QFont fontOf(TextSize size) {
    QFont font = QApplication::font();
    switch (size) {
    case TextSize::body:
        break;
    case TextSize::caption:
        scale(font, 0.86);
        break;
    case TextSize::headline:
        font.setWeight(QFont::DemiBold);
        break;
    case TextSize::title:
        scale(font, 1.3);
        font.setWeight(QFont::DemiBold);
        break;
    case TextSize::largeTitle:
        scale(font, 1.7);
        font.setWeight(QFont::Bold);
        break;
    }
    return font;
}

} // namespace nightjar
