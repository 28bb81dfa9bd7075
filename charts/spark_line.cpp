#include "charts/spark_line.h"

#include "charts/time_plot.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr double shown_ms = 60'000;
constexpr double shown_sweeps = 200; // of a run without times
constexpr double line_width = 1.8;

} // namespace

void draw_spark_line(QPainter& painter, const sample_matrix& matrix, int column, const QRectF& room,
                     const QColor& colour, double ratio) {
    const QRect place(0, 0, qRound(room.width() * ratio), qRound(room.height() * ratio));
    if (matrix.rows() < 2 || place.width() < 2 || place.height() < 2)
        return;
    const sample_times& times = matrix.times();
    const double end = times.end_of(matrix.rows() - 1);
    const double begin = std::max(times.begin_of(0), end - (times.are_known() ? shown_ms : shown_sweeps));
    plot_range range = range_between(matrix, begin, end);
    const series_summary seen = matrix.summary(column, range.first, range.rows);
    if (seen.empty())
        return;
    // A steady value lies in the middle.
    const bool is_steady = seen.maximum - seen.minimum < 1e-9;
    range.minimum = seen.minimum - (is_steady ? 1 : 0);
    range.maximum = seen.maximum + (is_steady ? 1 : 0);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(room.bottomLeft());
    painter.scale(1 / ratio, -1 / ratio);
    const QList<int> gaps = ends_of(time_gaps(matrix, place, range));
    for (const QPolygon& part : parts_between(series_points(matrix, column, place, range), gaps))
        draw_series(painter, part, 0, colour, line_width * ratio);
    painter.restore();
}

} // namespace brivant
