// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/TilePicture.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>

#include <algorithm>

namespace nightjar::TilePicture {

namespace {

/// By the first bytes: a reader that may choose would also try formats that nobody expects here.
QByteArray formatOf(const QByteArray& bytes) {
    if (bytes.startsWith("\x89PNG\r\n\x1a\n"))
        return QByteArrayLiteral("png");
    if (bytes.startsWith("\xff\xd8\xff"))
        return QByteArrayLiteral("jpeg");
    if (bytes.startsWith("RIFF") && bytes.mid(8, 4) == "WEBP")
        return QByteArrayLiteral("webp");
    return {};
}

} // namespace

std::optional<QImage> decode(const QByteArray& bytes) {
    const QByteArray format = formatOf(bytes);
    if (format.isEmpty() || bytes.size() > maximumBytes)
        return std::nullopt;

    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, format);
    reader.setDecideFormatFromContent(false);
    const QSize size = reader.size();
    if (size.width() != size.height() || (size.width() != 256 && size.width() != 512))
        return std::nullopt;
    const QImage image = reader.read();
    if (image.size() != size)
        return std::nullopt;

    QImage opaque(size, QImage::Format_RGB32);
    opaque.fill(Qt::white);
    QPainter(&opaque).drawImage(0, 0, image);
    return opaque;
}

QImage forNight(QImage image) {
    image.convertTo(QImage::Format_RGB32);
    constexpr int darkest = 24;
    constexpr int range = 190; // less contrast than on paper: labels must not shine
    const auto softened = [](int value) { return std::clamp(darkest + value * range / 255, 0, 255); };
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (QRgb* pixel = line; pixel != line + image.width(); ++pixel) {
            const auto [low, high] = std::minmax({qRed(*pixel), qGreen(*pixel), qBlue(*pixel)});
            const int shift = 255 - high - low;
            *pixel = qRgb(softened(qRed(*pixel) + shift), softened(qGreen(*pixel) + shift),
                          softened(qBlue(*pixel) + shift));
        }
    }
    return image;
}

} // namespace nightjar::TilePicture
