#include "charts/series_plot.h"

#include "charts/pixel_columns.h"

#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>

namespace brivant {

namespace {

constexpr double farthest = 30000; // what the painter can still place
constexpr double filling_alpha = 0.2;
constexpr qsizetype steps_at_once = 16;
constexpr QColor gap_colour(128, 128, 128);

int whole(double pixels) {
    return static_cast<int>(std::trunc(std::clamp(pixels, -farthest, farthest)));
}

void append_distinct(QPolygon& points, QPoint point) {
    if (points.isEmpty() || points.constLast() != point)
        points.append(point);
}

// What a series is painted of: the ups and downs of a pixel column as one upright line, and the ways between
// the columns. The way between two that lie side by side is left out where both cover it.
struct series_parts {
    QList<QLine> uprights; // from below
    QList<QLine> ways;
    QPolygon outline; // of the area below; what an upright line hides is not a part of it
};

series_parts parts_of(const QPolygon& points) {
    series_parts parts;
    QLine before;
    const auto covers = [](const QLine& drawn, int y) {
        return drawn.dy() > 0 && drawn.y1() <= y && y <= drawn.y2();
    };
    for (qsizetype at = 0; at < points.size();) {
        const qsizetype first = at;
        const int x = points[first].x();
        QLine column(points[first], points[first]);
        for (; at < points.size() && points[at].x() == x; ++at)
            column.setLine(x, std::min(column.y1(), points[at].y()), x,
                           std::max(column.y2(), points[at].y()));
        if (column.y2() > column.y1())
            parts.uprights.append(column);
        if (first > 0) {
            const QLine way(points[first - 1], points[first]);
            const bool is_covered = way.dx() <= 1 && covers(before, way.y2()) && covers(column, way.y1());
            if (!is_covered)
                parts.ways.append(way);
            if (way.dx() > 1) {
                append_distinct(parts.outline, way.p1());
                append_distinct(parts.outline, way.p2());
            }
        }
        append_distinct(parts.outline, column.p1());
        before = column;
    }
    return parts;
}

// Upright lines in whole pixels, which cost no blending. What neighbours have in common is one band, beyond
// which each has its two ends.
void fill_uprights(QPainter& painter, const QList<QLine>& uprights, const QColor& colour, int width) {
    const auto fill = [&](int left, int right, int low, int high) {
        painter.fillRect(QRect(left - width / 2, low - width / 2, right - left + width, high - low + width),
                         colour);
    };
    for (qsizetype at = 0; at < uprights.size();) {
        const int left = uprights[at].x1();
        int low = uprights[at].y1();
        int high = uprights[at].y2();
        qsizetype end = at + 1;
        for (; end < uprights.size() && uprights[end].x1() == uprights[end - 1].x1() + 1; ++end) {
            const int common_low = std::max(low, uprights[end].y1());
            const int common_high = std::min(high, uprights[end].y2());
            if (common_low >= common_high)
                break;
            low = common_low;
            high = common_high;
        }
        fill(left, uprights[end - 1].x1(), low, high);
        for (; at < end; ++at) {
            const QLine& line = uprights[at];
            if (line.y1() < low)
                fill(line.x1(), line.x1(), line.y1(), low);
            if (line.y2() > high)
                fill(line.x1(), line.x1(), high, line.y2());
        }
    }
}

// Piece by piece: the time that a path takes grows with the square of what lies side by side in it.
void fill_to(QPainter& painter, const QPolygon& outline, int baseline, const QColor& colour) {
    QColor filling = colour;
    filling.setAlphaF(filling_alpha);
    painter.setPen(Qt::NoPen);
    painter.setBrush(filling);
    // Its upper edge lies under the line, so it needs no smooth one.
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (qsizetype from = 0; from < outline.size() - 1; from += steps_at_once) {
        QPolygon piece = outline.mid(from, steps_at_once + 1);
        piece.append({piece.constLast().x(), baseline});
        piece.append({piece.constFirst().x(), baseline});
        painter.drawPolygon(piece);
    }
}

} // namespace

QPoint scale_point(qsizetype this_x, double this_y, int scr_x, int scr_y, int scr_width, int src_height,
                   double maxX, double minX, double maxY, double minY) {
    const double x = scr_width / (maxX - minX) * (static_cast<double>(this_x) - minX);
    if (maxY == minY)
        return {whole(x) + scr_x, 0};
    return {whole(x) + scr_x, whole(src_height / (maxY - minY) * (this_y - minY)) + scr_y};
}

QPolygon series_points(const sample_matrix& matrix, int column, const QRect& place, const plot_range& range) {
    QPolygon points;
    for (pixel_columns pixels(matrix, place, range); pixels.advance();) {
        const series_summary pixel = matrix.summary(column, pixels.first_row(), pixels.end_row());
        if (pixel.empty())
            continue;
        for (const double value : {pixel.first, pixel.minimum, pixel.maximum, pixel.last}) {
            QPoint point = pixels.point(column, value);
            if (!points.isEmpty()) // a moment within a sweep may lie behind the next one's begin
                point.setX(std::max(point.x(), points.constLast().x()));
            append_distinct(points, point);
        }
    }
    return points;
}

QList<int> gap_places(const sample_matrix& matrix, const QRect& place, const plot_range& range) {
    QList<int> gaps;
    if (matrix.gaps(range.first, range.rows) == 0)
        return gaps;
    for (pixel_columns pixels(matrix, place, range); pixels.advance();)
        if (matrix.gaps(pixels.first_row(), pixels.end_row()) > 0)
            gaps += pixels.x();
    return gaps;
}

QList<QPolygon> parts_between(const QPolygon& points, const QList<int>& gaps) {
    QList<QPolygon> parts;
    auto gap = gaps.begin();
    for (const QPoint& point : points) {
        bool is_behind = parts.isEmpty();
        for (; gap != gaps.end() && *gap <= point.x(); ++gap)
            is_behind = true;
        if (is_behind)
            parts += QPolygon();
        parts.last() += point;
    }
    return parts;
}

void draw_gaps(QPainter& painter, const QList<int>& gaps, const QRect& place, double line_width) {
    painter.setPen(QPen(gap_colour, line_width, Qt::DotLine));
    for (const int x : gaps)
        painter.drawLine(x, place.top(), x, place.top() + place.height());
}

void draw_series(QPainter& painter, const QPolygon& points, std::optional<int> baseline, const QColor& colour,
                 double line_width) {
    if (points.size() < 2)
        return;
    const series_parts parts = parts_of(points);
    if (baseline)
        fill_to(painter, parts.outline, *baseline, colour);
    painter.setRenderHint(QPainter::Antialiasing, false);
    fill_uprights(painter, parts.uprights, colour, std::max(1, qRound(line_width)));
    painter.setRenderHint(QPainter::Antialiasing);
    // One by one, with square ends, is what the painter draws fastest.
    painter.setPen(QPen(colour, line_width, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    painter.drawLines(parts.ways);
}

QColor series_colour(int column) {
    static constexpr std::array<QRgb, 8> palette{0xff69a0f5, 0xffff8b00, 0xff18e982, 0xffffff6e,
                                                 0xffdf482f, 0xffc4fff6, 0xff7f61ff, 0xffc98cb2};
    return palette[static_cast<size_t>(std::max(column, 0)) % palette.size()];
}

} // namespace brivant
