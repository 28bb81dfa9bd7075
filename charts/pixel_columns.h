#pragma once

#include "charts/series_plot.h"

namespace brivant {

// From left to right, the rows of each pixel column of a plot that has any. It holds on to what it is given.
class pixel_columns {
public:
    pixel_columns(const sample_matrix& its_matrix, const QRect& its_place, const plot_range& its_range);

    // Goes on to the next column; false behind the last.
    bool advance();
    qsizetype first_row() const { return begin; }
    qsizetype end_row() const { return next; }
    int x() const { return x_of_row(begin); }
    // Where a value of these rows lies: at its own moment where the row has the column to itself.
    QPoint point(int column, double value) const;

private:
    int x_of_row(qsizetype row) const;
    QPoint at_row(qsizetype row, double value) const;
    void advance_by_time();

    const sample_matrix& matrix;
    const QRect& place;
    const plot_range& range;
    qsizetype begin = 0;
    qsizetype next;
    double rows_per_pixel;
};

// Where a moment lies in a plot by time.
int x_of_moment(double ms, const QRect& place, const plot_range& range);

} // namespace brivant
