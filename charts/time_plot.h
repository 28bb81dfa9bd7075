#pragma once

#include "charts/series_plot.h"

namespace brivant {

// A run over the time that it took.

// A stretch without values, in pixels from the left.
struct plot_gap {
    int left = 0;
    int right = 0; // where values begin again
    bool operator==(const plot_gap&) const = default;
};

// What of the matrix is seen between two moments, and the rows beside it, from which lines come in and go
// out.
plot_range range_between(const sample_matrix& matrix, double from, double to);

// The gaps of the plot: rows without a reply, and where no row began for longer than a few sweeps.
QList<plot_gap> time_gaps(const sample_matrix& matrix, const QRect& place, const plot_range& range);
// Hatched; a line where a gap is narrower than that can be seen.
void draw_time_gaps(QPainter& painter, const QList<plot_gap>& gaps, const QRect& place, double line_width);
// Where the parts of a series begin: see parts_between().
QList<int> ends_of(const QList<plot_gap>& gaps);

// The value of a column at a moment, or the one just before it; NaN where a gap lies between.
double value_at(const sample_matrix& matrix, int column, double ms);

} // namespace brivant
