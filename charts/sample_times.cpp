#include "charts/sample_times.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace brivant {

namespace {

constexpr double sweeps_of_a_break = 5;
constexpr double least_break_ms = 500; // a fast adapter halts for less
constexpr float none = std::numeric_limits<float>::quiet_NaN();

} // namespace

struct sample_times::block {
    explicit block(int columns)
        : begins(static_cast<size_t>(block_rows)),
          offsets(begins.size() * static_cast<size_t>(columns), none) {}

    double& begin(qsizetype row) { return begins[static_cast<size_t>(row % block_rows)]; }
    float* offsets_of(qsizetype row, int columns) {
        return &offsets[static_cast<size_t>(row % block_rows * columns)];
    }

    std::vector<double> begins;
    std::vector<float> offsets; // row by row, a column each
};

sample_times::sample_times() = default;
sample_times::~sample_times() = default;

qsizetype sample_times::block_bytes(int columns) {
    return block_rows * static_cast<qsizetype>(sizeof(double) + static_cast<size_t>(columns) * sizeof(float));
}

void sample_times::start(int columns) {
    column_count = columns;
    row_count = dropped = 0;
    known = false;
    blocks.clear();
}

void sample_times::add_row() {
    const double begin = known ? end_of(row_count - 1) : static_cast<double>(dropped + row_count);
    if (row_count == static_cast<qsizetype>(blocks.size()) * block_rows)
        blocks.push_back(std::make_unique<block>(column_count));
    block_of(row_count).begin(row_count) = begin;
    ++row_count;
}

void sample_times::drop_block() {
    blocks.erase(blocks.begin());
    row_count -= block_rows;
    dropped += block_rows;
}

void sample_times::begins(double ms) {
    if (row_count == 0)
        return;
    const qsizetype row = row_count - 1;
    known = true;
    double& begin = block_of(row).begin(row);
    ms = row > 0 ? std::max(ms, begin_of(row - 1)) : ms;
    if (ms == begin)
        return;
    begin = ms;
    std::fill_n(block_of(row).offsets_of(row, column_count), column_count, none);
}

void sample_times::came(int column, double ms) {
    if (row_count == 0 || column < 0 || column >= column_count)
        return;
    const qsizetype row = row_count - 1;
    block_of(row).offsets_of(row, column_count)[column] =
        static_cast<float>(std::max(0.0, ms - begin_of(row)));
}

void sample_times::spread(qsizetype first, qsizetype end, double until) {
    if (first < 0 || first >= end || end > row_count)
        return;
    const double begin = begin_of(first);
    const double step = std::max(0.0, until - begin) / static_cast<double>(end - first);
    for (qsizetype row = first; row < end; ++row)
        block_of(row).begin(row) = begin + step * static_cast<double>(row - first);
}

double sample_times::begin_of(qsizetype row) const {
    return row >= 0 && row < row_count ? block_of(row).begin(row) : 0;
}

double sample_times::end_of(qsizetype row) const {
    if (row < 0 || row >= row_count)
        return 0;
    float latest = 0;
    const float* const offsets = block_of(row).offsets_of(row, column_count);
    for (int column = 0; column < column_count; ++column)
        latest = std::max(latest, std::isnan(offsets[column]) ? 0 : offsets[column]);
    return begin_of(row) + static_cast<double>(latest);
}

double sample_times::moment(qsizetype row, int column) const {
    if (row < 0 || row >= row_count || column < 0 || column >= column_count)
        return begin_of(row);
    const float offset = block_of(row).offsets_of(row, column_count)[column];
    return std::isnan(offset) ? end_of(row) : begin_of(row) + static_cast<double>(offset);
}

qsizetype sample_times::rows_before(double ms) const {
    qsizetype low = 0;
    for (qsizetype high = row_count; low < high;) {
        const qsizetype middle = low + (high - low) / 2;
        if (begin_of(middle) < ms)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

qsizetype sample_times::row_at(double ms) const {
    return rows_before(std::nextafter(ms, std::numeric_limits<double>::infinity())) - 1;
}

double sample_times::longest_way() const {
    if (row_count < 2)
        return std::numeric_limits<double>::infinity();
    const double sweep = (begin_of(row_count - 1) - begin_of(0)) / static_cast<double>(row_count - 1);
    return std::max(sweeps_of_a_break * sweep, least_break_ms);
}

} // namespace brivant
