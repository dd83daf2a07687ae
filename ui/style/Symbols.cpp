// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/style/Symbols.h"

#include <QFile>
#include <QIconEngine>
#include <QImage>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <algorithm>
#include <utility>

namespace nightjar::Symbols {

namespace {

QString fileOf(const QString& name) {
    return QStringLiteral(":/symbols/%1.svg").arg(name);
}

void render(QPainter& painter, QByteArray svg, const char* color, const char* hole) {
    svg.replace(QByteArrayLiteral("currentColor"), QByteArray(color));
    svg.replace(QByteArrayLiteral("holeColor"), QByteArray(hole));
    QSvgRenderer renderer(svg);
    renderer.render(&painter,
                    QRectF(QPointF(0, 0), QSizeF(painter.device()->width(), painter.device()->height())));
}

/// The drawings have two colours: "currentColor", and "holeColor" for what is cut out of it. What comes after
/// the last hole is drawn over it again, such as the stroke of a slash.
QImage draw(const QString& name, const QColor& color, int pixels) {
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QFile file(fileOf(name));
    if (!file.open(QIODevice::ReadOnly))
        return image;
    const QByteArray svg = file.readAll();
    const QByteArray solid = QColor(color.rgb()).name().toLatin1();

    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    render(painter, svg, solid, "none");
    if (const auto hole = svg.lastIndexOf("holeColor"); hole >= 0) {
        painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
        render(painter, svg, "none", "#000");
        if (const auto after = svg.indexOf("<g", hole); after >= 0) {
            painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
            render(painter, svg.left(svg.indexOf('>') + 1) + svg.mid(after), solid, "none");
        }
    }
    if (color.alpha() < 255) {
        painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
        painter.fillRect(image.rect(), QColor(0, 0, 0, color.alpha()));
    }
    return image;
}

QPixmap pixmap(const QString& name, const QColor& color, int pixels) {
    const QString key = QStringLiteral("symbol/%1/%2/%3").arg(name).arg(color.rgba(), 0, 16).arg(pixels);
    QPixmap found;
    if (!QPixmapCache::find(key, &found)) {
        found = QPixmap::fromImage(draw(name, color, pixels));
        QPixmapCache::insert(key, found);
    }
    return found;
}

class Engine final : public QIconEngine {
public:
    Engine(QString name, QColor color) : m_name(std::move(name)), m_color(color) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        Symbols::paint(*painter, rect, m_name, colorIn(mode));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        return Symbols::pixmap(m_name, colorIn(mode), std::min(size.width(), size.height()));
    }
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal scale) override {
        QPixmap scaled = pixmap(size, mode, state);
        scaled.setDevicePixelRatio(scale);
        return scaled;
    }
    [[nodiscard]] QIconEngine* clone() const override { return new Engine(*this); }

private:
    [[nodiscard]] QColor colorIn(QIcon::Mode mode) const {
        QColor color = m_color;
        if (mode == QIcon::Disabled)
            color.setAlpha(color.alpha() / 3);
        return color;
    }

    QString m_name;
    QColor m_color;
};

} // namespace

void paint(QPainter& painter, const QRectF& where, const QString& name, const QColor& color) {
    const qreal ratio = painter.device()->devicePixelRatioF();
    QPixmap symbol = pixmap(name, color, qRound(where.width() * ratio));
    symbol.setDevicePixelRatio(ratio);
    painter.drawPixmap(QPointF(qRound(where.x() * ratio) / ratio, qRound(where.y() * ratio) / ratio), symbol);
}

QIcon icon(const QString& name, const QColor& color) {
    return QIcon(new Engine(name, color));
}

bool exists(const QString& name) {
    return QFile::exists(fileOf(name));
}

} // namespace nightjar::Symbols
