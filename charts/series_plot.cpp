#include "charts/series_plot.h"

#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double farthest = 30000; // what the painter can still place
constexpr double filling_alpha = 0.2;
constexpr qsizetype steps_at_once = 16;

int whole(double pixels) {
    return static_cast<int>(std::trunc(std::clamp(pixels, -farthest, farthest)));
}

void append_distinct(QPolygon& points, QPoint point) {
    if (points.isEmpty() || points.constLast() != point)
        points.append(point);
}

// Of the points of a pixel column only those that lead in and out: the others have no area below them.
QPolygon without_spikes(const QPolygon& points) {
    QPolygon outline;
    for (qsizetype at = 0; at < points.size(); ++at) {
        const bool leads_in = at == 0 || points[at - 1].x() != points[at].x();
        const bool leads_out = at + 1 == points.size() || points[at + 1].x() != points[at].x();
        if (leads_in || leads_out)
            outline.append(points[at]);
    }
    return outline;
}

// The line through the points. The ups and downs of a pixel column are one line, and the way between two
// columns that lie side by side is left out where both columns cover it.
QList<QLine> lines_through(const QPolygon& points) {
    QList<QLine> lines;
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
            lines.append(column);
        if (first > 0) {
            const QLine way(points[first - 1], points[first]);
            const bool is_covered = way.dx() <= 1 && covers(before, way.y2()) && covers(column, way.y1());
            if (!is_covered)
                lines.append(way);
        }
        before = column;
    }
    return lines;
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
    if (range.rows <= range.first || place.width() <= 0)
        return points;
    const auto point = [&](qsizetype row, double value) {
        return scale_point(row, value, place.x(), place.y(), place.width(), place.height(),
                           static_cast<double>(range.rows), static_cast<double>(range.first), range.maximum,
                           range.minimum);
    };
    const double rows_per_pixel = static_cast<double>(range.rows - range.first) / place.width();

    for (qsizetype row = range.first; row < range.rows;) {
        const int x = point(row, 0).x();
        qsizetype next = range.first + static_cast<qsizetype>(rows_per_pixel * (x - place.x() + 1));
        next = std::clamp(next, row + 1, range.rows);
        while (next < range.rows && point(next, 0).x() == x)
            ++next;
        while (next > row + 1 && point(next - 1, 0).x() != x)
            --next;

        const series_summary pixel = matrix.summary(column, row, next);
        if (!pixel.empty())
            for (const double value : {pixel.first, pixel.minimum, pixel.maximum, pixel.last})
                append_distinct(points, point(row, value));
        row = next;
    }
    return points;
}

void draw_series(QPainter& painter, const QPolygon& points, int baseline, const QColor& colour,
                 double line_width) {
    if (points.size() < 2)
        return;
    QColor filling = colour;
    filling.setAlphaF(filling_alpha);
    painter.setPen(Qt::NoPen);
    painter.setBrush(filling);
    // Its upper edge lies under the line, so it needs no smooth one. Piece by piece: the time that a path
    // takes grows with the square of what lies side by side in it.
    painter.setRenderHint(QPainter::Antialiasing, false);
    const QPolygon outline = without_spikes(points);
    for (qsizetype from = 0; from < outline.size() - 1; from += steps_at_once) {
        QPolygon piece = outline.mid(from, steps_at_once + 1);
        piece.append({piece.constLast().x(), baseline});
        piece.append({piece.constFirst().x(), baseline});
        painter.drawPolygon(piece);
    }
    painter.setRenderHint(QPainter::Antialiasing);

    // Lines one by one, with square ends, are what the painter draws fastest.
    const QList<QLine> lines = lines_through(points);
    painter.setPen(QPen(colour, line_width, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    painter.drawLines(lines);
}

QColor series_colour(int column) {
    static constexpr std::array<QRgb, 8> palette{0xff69a0f5, 0xffff8b00, 0xff18e982, 0xffffff6e,
                                                 0xffdf482f, 0xffc4fff6, 0xff7f61ff, 0xffc98cb2};
    return palette[static_cast<size_t>(std::max(column, 0)) % palette.size()];
}
