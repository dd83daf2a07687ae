// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/map/MapGeometry.h"

#include <QObject>
#include <QSizeF>
#include <QVariantAnimation>

#include <optional>

namespace nightjar {

/// Where a map looks: a centre on the Mercator square and a zoom as a real number, the whole world being
/// 256 x 2^zoom points wide. The view never leaves the world to the north or south and is never wider than
/// it. GUI thread; no timer runs unless it moves.
class MapCamera : public QObject {
    Q_OBJECT

public:
    enum class Motion { jump, glide };

    static constexpr double maximumZoom = 20;

    explicit MapCamera(QObject* parent = nullptr);

    /// Points. What was shown last by `show` is shown again, what the user chose stays where it is.
    void setViewSize(QSizeF size);
    [[nodiscard]] QSizeF viewSize() const { return m_view; }
    [[nodiscard]] QPointF center() const { return m_place.center; }
    [[nodiscard]] double zoom() const { return m_place.zoom; }
    [[nodiscard]] double worldSize() const; ///< points
    [[nodiscard]] MapRegion region() const;
    [[nodiscard]] bool isGliding() const { return m_animation.state() == QAbstractAnimation::Running; }

    /// The region in full, with what else the shape of the view adds.
    void show(const MapRegion& region, Motion motion);
    void pan(QPointF points);
    /// The point of the view keeps its place on Earth.
    void zoomAt(QPointF anchor, double steps, Motion motion);
    /// Moves no more than needed for the place to be in the view.
    void reveal(QPointF place, Motion motion);

    /// The nearest of the repeated worlds is meant.
    [[nodiscard]] QPointF toView(QPointF place) const;
    [[nodiscard]] QPointF toWorld(QPointF viewPoint) const;

Q_SIGNALS:
    void changed();

private:
    struct Place {
        QPointF center{0.5, 0.5};
        double zoom = 1;
    };

    [[nodiscard]] Place placeOf(const MapRegion& region) const;
    [[nodiscard]] Place inBounds(Place place) const;
    [[nodiscard]] double minimumZoom() const;
    void set(Place place);
    void glideTo(Place target, std::optional<QPointF> anchor, int milliseconds, QEasingCurve::Type curve);
    void glide(double progress);
    [[nodiscard]] Place zoomedAt(QPointF anchor, double zoom) const;

    QSizeF m_view{640, 480};
    Place m_place;
    std::optional<MapRegion> m_shown; ///< until the user moves
    QVariantAnimation m_animation;
    Place m_from;
    Place m_to;
    std::optional<QPointF> m_anchor;
};

} // namespace nightjar
