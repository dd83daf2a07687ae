// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/map/MapMarker.h"

#include <QCache>
#include <QFont>
#include <QHash>
#include <QPixmap>

namespace nightjar {

enum class MarkerState { plain, hovered, selected };

/// The discs and the labels of markers, drawn once and kept while palette, font and screen stay the same.
/// GUI thread.
class MarkerPictures {
public:
    static constexpr qreal discExtent = 48; ///< points, with its shadow

    /// Forgets everything when something differs from the last call.
    void prepare(const Colors& colors, const QFont& font, qreal pixelRatio);
    [[nodiscard]] const QPixmap& disc(const MapMarker& marker, MarkerState state);
    [[nodiscard]] QSizeF labelSize(const QString& title);
    [[nodiscard]] QPixmap label(const QString& title);

private:
    struct Label {
        QString shown;
        QSizeF size;
        QPixmap picture; ///< drawn when it is needed first
    };

    Label& labelOf(const QString& title);
    [[nodiscard]] QPixmap canvas(QSizeF size) const;
    [[nodiscard]] QPixmap haloOf(const QPixmap& text) const;

    const Colors* m_colors = nullptr;
    QFont m_font;
    qreal m_pixelRatio = 0;
    QHash<QString, QPixmap> m_discs;
    QCache<QString, Label> m_labels{4 << 20}; ///< bytes
};

} // namespace nightjar
