// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/MapButton.h"
#include "ui/map/MapView.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace nightjar {

namespace {

constexpr qreal reach = 17;    ///< points round a marker that belong to it
constexpr qreal dragStart = 4; ///< points
constexpr qreal keyPan = 80;   ///< points
constexpr int notch = QWheelEvent::DefaultDeltasPerStep;
constexpr double stepsPerNotch = 0.75; ///< of a wheel
constexpr double pixelsPerStep = 200;  ///< of a touch pad
constexpr double mostSteps = 3;        ///< by one event
constexpr double markersSpan = 0.02;   ///< degrees, at least
constexpr qsizetype longestToolTip = 300;

} // namespace

const MapMarker* MapView::markerAt(QPointF point) const {
    const MapMarker* nearest = nullptr;
    double shortest = reach * reach;
    for (std::size_t i = 0; i < m_markers.size(); ++i) {
        const QPointF away = m_camera.toView(m_places[i]) - point;
        const double distance = QPointF::dotProduct(away, away);
        const bool isOnTop = m_markers[i].id == m_selected && distance <= reach * reach;
        if (isOnTop)
            return &m_markers[i];
        if (distance <= shortest) {
            shortest = distance;
            nearest = &m_markers[i];
        }
    }
    return nearest;
}

void MapView::setHovered(const QString& id) {
    if (m_hovered == id)
        return;
    m_hovered = id;
    setCursor(id.isEmpty() ? Qt::ArrowCursor : Qt::PointingHandCursor);
    update();
}

void MapView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    m_pressedAt = m_lastAt = event->position();
    m_isDragging = false;
}

void MapView::mouseMoveEvent(QMouseEvent* event) {
    if (!(event->buttons() & Qt::LeftButton)) {
        const MapMarker* under = markerAt(event->position());
        setHovered(under ? under->id : QString());
        return;
    }
    if (!m_isDragging && (event->position() - m_pressedAt).manhattanLength() > dragStart) {
        m_isDragging = true;
        setCursor(Qt::ClosedHandCursor);
    }
    if (!m_isDragging)
        return;
    userMoves();
    m_camera.pan(event->position() - m_lastAt);
    m_lastAt = event->position();
}

void MapView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    const bool wasDragging = std::exchange(m_isDragging, false);
    setCursor(m_hovered.isEmpty() ? Qt::ArrowCursor : Qt::PointingHandCursor);
    if (wasDragging)
        return;
    if (const MapMarker* under = markerAt(event->position()))
        activateMarker(QString(under->id));
}

void MapView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || markerAt(event->position()))
        return;
    userMoves();
    m_camera.zoomAt(event->position(), 1, MapCamera::Motion::glide);
}

void MapView::wheelEvent(QWheelEvent* event) {
    // A touch pad tells pixels, or less than a notch at a time: that is smooth already.
    const bool isSmooth = !event->pixelDelta().isNull() || event->angleDelta().y() % notch;
    const double steps = event->pixelDelta().isNull() ? event->angleDelta().y() * stepsPerNotch / notch
                                                      : event->pixelDelta().y() / pixelsPerStep;
    event->accept();
    if (steps == 0)
        return;
    userMoves();
    m_camera.zoomAt(event->position(), std::clamp(steps, -mostSteps, mostSteps),
                    isSmooth ? MapCamera::Motion::jump : MapCamera::Motion::glide);
}

void MapView::zoomByStep(double steps) {
    userMoves();
    m_camera.zoomAt(QRectF(rect()).center(), steps, MapCamera::Motion::glide);
}

bool MapView::panByKey(const QKeyEvent& event) {
    QPointF way;
    switch (event.key()) {
    case Qt::Key_Left:
        way = {keyPan, 0};
        break;
    case Qt::Key_Right:
        way = {-keyPan, 0};
        break;
    case Qt::Key_Up:
        way = {0, keyPan};
        break;
    case Qt::Key_Down:
        way = {0, -keyPan};
        break;
    default:
        return false;
    }
    userMoves();
    m_camera.pan(way);
    return true;
}

void MapView::keyPressEvent(QKeyEvent* event) {
    constexpr auto others = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    if ((event->modifiers() & others) || panByKey(*event))
        return QWidget::keyPressEvent(event);
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return zoomByStep(1);
    case Qt::Key_Minus:
        return zoomByStep(-1);
    case Qt::Key_0:
    case Qt::Key_Home: {
        std::vector<MapCoordinate> all;
        for (const MapMarker& each : m_markers)
            all.push_back(each.at);
        return fitPositions(all, markersSpan);
    }
    case Qt::Key_N:
        return stepMarker(1);
    case Qt::Key_P:
        return stepMarker(-1);
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (!m_keyboard.isEmpty())
            return activateMarker(QString(m_keyboard));
        break;
    default:
        break;
    }
    QWidget::keyPressEvent(event);
}

void MapView::contextMenuEvent(QContextMenuEvent* event) {
    const MapMarker* meant =
        event->reason() == QContextMenuEvent::Mouse ? markerAt(event->pos()) : marker(m_keyboard);
    if (!meant) {
        event->ignore();
        return;
    }
    const QPoint at = event->reason() == QContextMenuEvent::Mouse
                          ? event->globalPos()
                          : mapToGlobal(positionOf(meant->at).toPoint());
    Q_EMIT markerMenuRequested(QString(meant->id), at);
}

bool MapView::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const MapMarker* under = markerAt(help->pos());
        // Marked up, so that Qt does not guess whether a title of somebody else's is.
        if (under)
            QToolTip::showText(
                help->globalPos(),
                QStringLiteral("<qt>%1</qt>").arg(plainLine(under->title, longestToolTip).toHtmlEscaped()),
                this);
        else
            QToolTip::hideText();
        return true;
    }
    if (event->type() == QEvent::NativeGesture) {
        const auto* gesture = static_cast<QNativeGestureEvent*>(event);
        if (gesture->gestureType() == Qt::ZoomNativeGesture && gesture->value() > -1) {
            userMoves();
            m_camera.zoomAt(gesture->position(),
                            std::clamp(std::log2(1 + gesture->value()), -mostSteps, mostSteps),
                            MapCamera::Motion::jump);
            return true;
        }
    }
    return QWidget::event(event);
}

void MapView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        placeButtons();
        forgetBackdrop();
    }
    QWidget::changeEvent(event);
}

void MapView::resizeEvent(QResizeEvent*) {
    m_camera.setViewSize(size());
    placeButtons();
    forgetBackdrop();
}

void MapView::hideEvent(QHideEvent*) {
    if (m_regionTimer.isActive())
        tellRegion();
    m_backdrop = {};
}

void MapView::leaveEvent(QEvent*) {
    setHovered({});
}

void MapView::focusInEvent(QFocusEvent*) {
    update();
}

void MapView::focusOutEvent(QFocusEvent*) {
    update();
}

} // namespace nightjar
