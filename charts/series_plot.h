#pragma once

#include "charts/sample_matrix.h"

#include <QColor>
#include <QPainter>
#include <QPolygon>
#include <QRect>
#include <optional>

namespace brivant {

// The line of one series. Points are whole pixels, y growing upward.

// The place of a sample in the rectangle at scr_x, scr_y. Y is 0 when there is no range.
QPoint scale_point(qsizetype this_x, double this_y, int scr_x, int scr_y, int scr_width, int src_height,
                   double maxX, double minX, double maxY, double minY);

// What of a run is drawn, and between which values.
struct plot_range {
    qsizetype first = 0; // row at the left edge
    qsizetype rows = 0;  // of the matrix; the row after the last is the right edge
    double minimum = 0;
    double maximum = 0;
    // By time: the moments at the two edges, in milliseconds. Both 0: by sweeps.
    double from = 0;
    double to = 0;

    bool is_by_time() const { return to > from; }
};

// The series from row `first` on; rows that lack a value are bridged. A pixel column gets at most its first,
// smallest, largest and last point, which cover the same pixels as all of them would: the cost depends on the
// width, not on the rows. By time a value lies at its own moment where its row has a pixel column to itself.
QPolygon series_points(const sample_matrix& matrix, int column, const QRect& place, const plot_range& range);

// The places, from the left, of the gaps among these rows: see sample_matrix::gaps().
QList<int> gap_places(const sample_matrix& matrix, const QRect& place, const plot_range& range);
// The parts of the points between the gaps.
QList<QPolygon> parts_between(const QPolygon& points, const QList<int>& gaps);
// A line from bottom to top at each.
void draw_gaps(QPainter& painter, const QList<int>& gaps, const QRect& place, double line_width);

// The line, over the filled area between the points and the baseline where there is one to fill to. Nothing
// for fewer than two points.
void draw_series(QPainter& painter, const QPolygon& points, std::optional<int> baseline, const QColor& colour,
                 double line_width);

// The colour of a column of the matrix. The eight of them differ clearly on a dark ground, also for people
// who cannot tell red from green or blue from yellow.
QColor series_colour(int column);

} // namespace brivant
