#include "charts/time_plot.h"

#include "charts/pixel_columns.h"

#include <algorithm>
#include <limits>

namespace brivant {

namespace {

constexpr qsizetype most_looked_back = 64; // rows
constexpr QColor hatching(160, 170, 180, 90);
constexpr int least_hatched = 4; // lines wide

} // namespace

plot_range range_between(const sample_matrix& matrix, double from, double to) {
    const sample_times& times = matrix.times();
    plot_range range;
    range.first = std::max<qsizetype>(0, times.rows_before(from) - 1);
    range.rows = std::min(matrix.rows(), times.rows_before(to) + 1);
    range.from = from;
    range.to = std::max(to, from + 1);
    return range;
}

QList<plot_gap> time_gaps(const sample_matrix& matrix, const QRect& place, const plot_range& range) {
    const sample_times& times = matrix.times();
    const double longest = times.longest_way();
    QList<plot_gap> gaps;
    qsizetype before = -1; // the row that the gap would follow
    for (pixel_columns pixels(matrix, place, range); pixels.advance();) {
        const qsizetype rows = pixels.end_row() - pixels.first_row();
        const qsizetype empty = matrix.gaps(pixels.first_row(), pixels.end_row());
        if (empty == rows)
            continue;
        const bool is_break = empty > 0 || pixels.first_row() > before + 1 ||
                              times.begin_of(pixels.first_row()) - times.begin_of(before) > longest;
        if (before >= 0 && is_break)
            gaps.append({std::min(x_of_moment(times.end_of(before), place, range), pixels.x()), pixels.x()});
        before = pixels.end_row() - 1;
    }
    return gaps;
}

QList<int> ends_of(const QList<plot_gap>& gaps) {
    QList<int> ends;
    for (const plot_gap& gap : gaps)
        ends += gap.right;
    return ends;
}

void draw_time_gaps(QPainter& painter, const QList<plot_gap>& gaps, const QRect& place, double line_width) {
    QList<int> narrow;
    for (const plot_gap& gap : gaps) {
        const int left = std::max(gap.left, place.left());
        const int right = std::min(gap.right, place.left() + place.width());
        if (gap.right - gap.left < least_hatched * line_width)
            narrow += gap.right;
        else
            painter.fillRect(QRect(left, place.top(), right - left, place.height()),
                             QBrush(hatching, Qt::BDiagPattern));
    }
    draw_gaps(painter, narrow, place, line_width);
}

double value_at(const sample_matrix& matrix, int column, double ms) {
    const sample_times& times = matrix.times();
    const qsizetype last = times.row_at(ms);
    for (qsizetype row = last; row >= std::max<qsizetype>(0, last - most_looked_back); --row) {
        if (matrix.gaps(row, row + 1) > 0 || ms - times.end_of(row) > times.longest_way())
            break;
        if (const double value = matrix.value(row, column);
            !std::isnan(value) && times.moment(row, column) <= ms)
            return value;
    }
    return std::numeric_limits<double>::quiet_NaN();
}

} // namespace brivant
