#include "charts/series_averages.h"

namespace brivant {

namespace {
constexpr qsizetype rows_apart = 64;
}

void series_averages::total::add(double value) {
    if (std::isnan(value))
        return;
    sum += value;
    ++count;
}

void series_averages::start(int columns) {
    column_count = columns;
    counted = 0;
    running.assign(static_cast<size_t>(columns), {});
    milestones.clear();
}

void series_averages::count_rows(const sample_matrix& matrix) {
    for (; counted < matrix.rows(); ++counted) {
        if (counted % rows_apart == 0)
            milestones.insert(milestones.end(), running.begin(), running.end());
        for (int column = 0; column < column_count; ++column)
            running[static_cast<size_t>(column)].add(matrix.value(counted, column));
    }
}

series_averages::total series_averages::before(const sample_matrix& matrix, int column, qsizetype row) const {
    if (row >= counted)
        return running[static_cast<size_t>(column)];
    total sum = milestones[static_cast<size_t>(row / rows_apart * column_count + column)];
    for (qsizetype at = row - row % rows_apart; at < row; ++at)
        sum.add(matrix.value(at, column));
    return sum;
}

double series_averages::average(const sample_matrix& matrix, int column, qsizetype begin,
                                qsizetype end) const {
    if (column < 0 || column >= column_count || begin < 0 || end <= begin)
        return std::numeric_limits<double>::quiet_NaN();
    const total from = before(matrix, column, begin);
    const total to = before(matrix, column, end);
    return to.count > from.count ? (to.sum - from.sum) / static_cast<double>(to.count - from.count)
                                 : std::numeric_limits<double>::quiet_NaN();
}

} // namespace brivant
