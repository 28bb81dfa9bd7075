#include "charts/pixel_columns.h"

#include <algorithm>
#include <cmath>

namespace brivant {

int x_of_moment(double ms, const QRect& place, const plot_range& range) {
    constexpr double farthest = 30000; // what the painter can still place
    const double x = place.width() * (ms - range.from) / (range.to - range.from);
    return place.x() + static_cast<int>(std::floor(std::clamp(x, -farthest, farthest)));
}

pixel_columns::pixel_columns(const sample_matrix& its_matrix, const QRect& its_place,
                             const plot_range& its_range)
    : matrix(its_matrix), place(its_place), range(its_range), next(range.first),
      rows_per_pixel(static_cast<double>(range.rows - range.first) / place.width()) {}

int pixel_columns::x_of_row(qsizetype row) const {
    return range.is_by_time() ? x_of_moment(matrix.times().begin_of(row), place, range) : at_row(row, 0).x();
}

QPoint pixel_columns::at_row(qsizetype row, double value) const {
    return scale_point(row, value, place.x(), place.y(), place.width(), place.height(),
                       static_cast<double>(range.rows), static_cast<double>(range.first), range.maximum,
                       range.minimum);
}

QPoint pixel_columns::point(int column, double value) const {
    QPoint its_place = at_row(begin, value);
    if (range.is_by_time())
        its_place.setX(next == begin + 1 ? x_of_moment(matrix.times().moment(begin, column), place, range)
                                         : x_of_row(begin));
    return its_place;
}

bool pixel_columns::advance() {
    if (place.width() <= 0 || next >= range.rows)
        return false;
    begin = next;
    if (range.is_by_time()) {
        advance_by_time();
        return true;
    }
    const int at = x();
    next = range.first + static_cast<qsizetype>(rows_per_pixel * (at - place.x() + 1));
    next = std::clamp(next, begin + 1, range.rows);
    while (next < range.rows && x_of_row(next) == at)
        ++next;
    while (next > begin + 1 && x_of_row(next - 1) != at)
        --next;
    return true;
}

// In strides that double, then by halving.
void pixel_columns::advance_by_time() {
    const int at = x();
    qsizetype step = 1;
    while (begin + step < range.rows && x_of_row(begin + step) == at)
        step *= 2;
    next = begin + step / 2 + 1;
    for (qsizetype high = std::min(begin + step, range.rows); next < high;) {
        const qsizetype middle = next + (high - next) / 2;
        if (x_of_row(middle) == at)
            next = middle + 1;
        else
            high = middle;
    }
}

} // namespace brivant
