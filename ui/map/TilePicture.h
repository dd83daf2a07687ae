// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QImage>

#include <optional>

namespace nightjar::TilePicture {

constexpr qsizetype maximumBytes = 2 << 20;

/// A tile as it came from a server or a file. Only PNG, JPEG and WebP of 256 or 512 points square are
/// decoded; anything else, and more than `maximumBytes`, is no picture. Any thread.
[[nodiscard]] std::optional<QImage> decode(const QByteArray& bytes);

/// Tiles are drawn for white paper. For the dark palette light and dark change places, hues stay.
[[nodiscard]] QImage forNight(QImage image);

} // namespace nightjar::TilePicture
