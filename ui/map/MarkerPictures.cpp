// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/MarkerPictures.h"

#include "ui/style/Symbols.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>
#include <numbers>

namespace nightjar {

namespace {

constexpr qreal widestLabel = 180; ///< points
constexpr qsizetype longestTitle = 200;
constexpr qreal haloWidth = 1.5;
constexpr qreal haloOpacity = 0.88;
constexpr int haloSteps = 12;
constexpr QSizeF labelMargin{4, 2};
constexpr qsizetype mostDiscs = 256;

bool isUnwanted(QChar character) {
    switch (character.category()) {
    case QChar::Other_Control:
    case QChar::Other_NotAssigned:
    case QChar::Other_PrivateUse:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    case QChar::Other_Format: // all but what joins emoji and letters
        return character != QChar(0x200d) && character != QChar(0x200c);
    default:
        return false;
    }
}

} // namespace

QString plainLine(const QString& text, qsizetype longest) {
    QString line = text.left(longest);
    if (!line.isEmpty() && line.back().isHighSurrogate())
        line.chop(1);
    for (QChar& character : line)
        if (isUnwanted(character))
            character = u' ';
    return line.simplified();
}

void MarkerPictures::prepare(const Colors& colors, const QFont& font, qreal pixelRatio) {
    if (m_colors == &colors && m_font == font && m_pixelRatio == pixelRatio)
        return;
    m_colors = &colors;
    m_font = font;
    m_pixelRatio = pixelRatio;
    m_discs.clear();
    m_labels.clear();
}

QPixmap MarkerPictures::canvas(QSizeF size) const {
    QPixmap pixmap((size * m_pixelRatio).toSize());
    pixmap.setDevicePixelRatio(m_pixelRatio);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

const QPixmap& MarkerPictures::disc(const MapMarker& marker, MarkerState state) {
    const QString key =
        QStringLiteral("%1/%2/%3").arg(static_cast<int>(marker.tint)).arg(static_cast<int>(state)) +
        marker.symbol;
    if (const auto known = m_discs.constFind(key); known != m_discs.cend())
        return *known;
    if (m_discs.size() >= mostDiscs)
        m_discs.clear();

    const qreal radius = state == MarkerState::selected ? 17 : state == MarkerState::hovered ? 15 : 14;
    const QPointF center(discExtent / 2, discExtent / 2);
    QPixmap pixmap = canvas({discExtent, discExtent});
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QRadialGradient shadow(center + QPointF(0, 1.5), radius + 5);
    shadow.setColorAt(0, QColor(0, 0, 0, 100));
    shadow.setColorAt(radius / (radius + 5), QColor(0, 0, 0, 60));
    shadow.setColorAt(1, Qt::transparent);
    painter.setBrush(shadow);
    painter.drawEllipse(center + QPointF(0, 1.5), radius + 5, radius + 5);
    painter.setBrush(Qt::white);
    painter.drawEllipse(center, radius, radius);
    painter.setBrush(m_colors->tint(marker.tint));
    painter.drawEllipse(center, radius - 2.2, radius - 2.2);
    const qreal size = state == MarkerState::selected ? 20 : 16;
    Symbols::paint(painter, QRectF(center - QPointF(size, size) / 2, QSizeF(size, size)), marker.symbol,
                   Qt::white);
    painter.end();
    return *m_discs.insert(key, pixmap);
}

MarkerPictures::Label& MarkerPictures::labelOf(const QString& title) {
    if (Label* known = m_labels.object(title))
        return *known;
    const QFontMetricsF metrics(m_font);
    auto* label = new Label;
    label->shown = metrics.elidedText(plainLine(title, longestTitle), Qt::ElideRight, widestLabel);
    label->size = QSizeF(std::ceil(metrics.horizontalAdvance(label->shown)), std::ceil(metrics.height())) +
                  2 * labelMargin;
    const auto pixels = label->size * m_pixelRatio;
    m_labels.insert(title, label,
                    static_cast<qsizetype>(pixels.width() * pixels.height() * 4) + title.size() * 2);
    return *label;
}

/// From the pixels of the text: asking for the outlines of coloured glyphs spoils them for later texts.
QPixmap MarkerPictures::haloOf(const QPixmap& text) const {
    QPixmap shape = text;
    {
        QPainter painter(&shape);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(QRectF(QPointF(0, 0), text.deviceIndependentSize()), m_colors->content);
    }
    QPixmap halo = text;
    halo.fill(Qt::transparent);
    QPainter painter(&halo);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (int step = 0; step < haloSteps; ++step) {
        const double angle = 2 * std::numbers::pi * step / haloSteps;
        painter.drawPixmap(haloWidth * QPointF(std::cos(angle), std::sin(angle)), shape);
    }
    painter.drawPixmap(0, 0, shape);
    painter.end();
    return halo;
}

QSizeF MarkerPictures::labelSize(const QString& title) {
    return labelOf(title).size;
}

QPixmap MarkerPictures::label(const QString& title) {
    Label& label = labelOf(title);
    if (!label.picture.isNull())
        return label.picture;
    QPixmap text = canvas(label.size);
    {
        QPainter painter(&text);
        painter.setFont(m_font);
        painter.setPen(m_colors->text);
        painter.drawText(QPointF(labelMargin.width(), labelMargin.height() + QFontMetricsF(m_font).ascent()),
                         label.shown);
    }
    label.picture = canvas(label.size);
    QPainter painter(&label.picture);
    painter.setOpacity(haloOpacity);
    painter.drawPixmap(0, 0, haloOf(text));
    painter.setOpacity(1);
    painter.drawPixmap(0, 0, text);
    painter.end();
    return label.picture;
}

} // namespace nightjar
