// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/TrailLine.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace nightjar {

namespace {

constexpr double tolerance = 0.6; ///< points on the screen
/// A line is simplified in runs of this length, so that no shape of it takes quadratic time.
constexpr qsizetype runLength = 256;
constexpr double mostTurns = 4; ///< round the Earth

double distanceFrom(QPointF a, QPointF b, QPointF point) {
    const QPointF way = b - a;
    const double length = QPointF::dotProduct(way, way);
    const double along = length > 0 ? std::clamp(QPointF::dotProduct(point - a, way) / length, 0.0, 1.0) : 0;
    const QPointF away = point - (a + way * along);
    return std::hypot(away.x(), away.y());
}

/// Marks the points that a line from `first` to `last` needs.
void keepNeeded(const QPolygonF& points, qsizetype first, qsizetype last, double error,
                std::vector<bool>& kept) {
    std::vector<std::pair<qsizetype, qsizetype>> open{{first, last}};
    while (!open.empty()) {
        const auto [from, to] = open.back();
        open.pop_back();
        double farthest = error;
        qsizetype at = -1;
        for (qsizetype i = from + 1; i < to; ++i) {
            if (const double distance = distanceFrom(points[from], points[to], points[i]);
                distance > farthest) {
                farthest = distance;
                at = i;
            }
        }
        if (at < 0)
            continue;
        kept[static_cast<std::size_t>(at)] = true;
        open.emplace_back(from, at);
        open.emplace_back(at, to);
    }
}

QPolygonF thinned(const QPolygonF& line, double share) {
    QPolygonF out;
    for (double i = 0; i < static_cast<double>(line.size()) - 1; i += share)
        out << line[static_cast<qsizetype>(i)];
    out << line.last();
    return out;
}

} // namespace

bool TrailLine::set(const std::vector<MapCoordinate>& coordinates) {
    std::vector<MapCoordinate> real;
    std::ranges::copy_if(coordinates, std::back_inserter(real), isOnEarth);
    if (real == m_coordinates)
        return false;
    m_coordinates = std::move(real);
    m_points.clear();
    for (const MapCoordinate& coordinate : m_coordinates) {
        QPointF point = mercator::project(coordinate);
        if (!m_points.isEmpty())
            point.rx() -= std::round(point.x() - m_points.last().x());
        m_points << point;
    }
    m_extent = m_points.boundingRect();
    m_level = -1;
    return true;
}

void TrailLine::simplify(int level) {
    m_level = level;
    m_simple.clear();
    const double error = tolerance / std::exp2(level);
    std::vector<bool> kept(static_cast<std::size_t>(m_points.size()));
    for (qsizetype first = 0; first < m_points.size(); first += runLength) {
        const qsizetype last = std::min(first + runLength, m_points.size() - 1);
        kept[static_cast<std::size_t>(first)] = kept[static_cast<std::size_t>(last)] = true;
        keepNeeded(m_points, first, last, error, kept);
    }
    for (qsizetype i = 0; i < m_points.size(); ++i) {
        if (!kept[static_cast<std::size_t>(i)])
            continue;
        const QPointF away = m_simple.isEmpty() ? QPointF(1, 1) : m_points[i] - m_simple.last();
        if (std::hypot(away.x(), away.y()) > error || i + 1 == m_points.size())
            m_simple << m_points[i];
    }
}

std::vector<QPolygonF> TrailLine::pieces(const QRectF& part, double worldSize) {
    std::vector<QPolygonF> found;
    if (isEmpty())
        return found;
    if (const int level = static_cast<int>(std::ceil(std::log2(worldSize))); level != m_level)
        simplify(level);

    qsizetype count = 0;
    const double firstTurn = std::ceil(part.left() - m_extent.right());
    const double lastTurn = std::min(part.right() - m_extent.left(), firstTurn + mostTurns);
    for (double turn = firstTurn; turn <= lastTurn; ++turn) {
        const QRectF visible = part.translated(-turn, 0);
        QPolygonF piece;
        for (qsizetype i = 1; i < m_simple.size(); ++i) {
            const QPointF a = m_simple[i - 1];
            const QPointF b = m_simple[i];
            const bool isVisible =
                std::max(a.x(), b.x()) >= visible.left() && std::min(a.x(), b.x()) <= visible.right() &&
                std::max(a.y(), b.y()) >= visible.top() && std::min(a.y(), b.y()) <= visible.bottom();
            if (isVisible && piece.isEmpty())
                piece << a;
            if (isVisible)
                piece << b;
            if (!piece.isEmpty() && (!isVisible || i + 1 == m_simple.size())) {
                count += piece.size();
                found.push_back(piece.translated(turn, 0));
                piece.clear();
            }
        }
    }
    if (count > mostDrawn)
        for (QPolygonF& piece : found)
            piece = thinned(piece, static_cast<double>(count) / mostDrawn);
    return found;
}

} // namespace nightjar
