#include "livedata/late_log.h"

#include "base/shared_types.h"

#include <algorithm>

namespace brivant {

namespace {
constexpr qsizetype rows_at_once = 500; // some 20 ms
}

late_log::late_log(run_log& its_storing, const live_results& its_results)
    : storing(its_storing), results(its_results), rows(its_results.cur_log_points.rows() - 1) {
    storing.begin_at(results.cur_log_points.times().begin_of(0), results.moments.started_utc_ms());
}

bool late_log::step() {
    QList<run_log::kept_line> lines;
    for (const qsizetype end = std::min(rows, next + rows_at_once); next < end; ++next)
        lines += line_of(next);
    if (!storing.store_lines(lines))
        return false;
    if (next < rows)
        return true;
    for (const timed_mark& mark : std::as_const(results.marks))
        storing.store_mark(mark);
    return false;
}

run_log::kept_line late_log::line_of(qsizetype row) const {
    const sample_matrix& samples = results.cur_log_points;
    const sample_times& times = samples.times();
    run_log::kept_line line{{}, {times.begin_of(row), {}}, samples.gaps(row, row + 1) > 0};
    QStringList bodies;
    for (int column = 0; column < samples.columns(); ++column) {
        const QString body = samples.body(row, column);
        const bool came = body.startsWith(QLatin1String("41"));
        bodies += came ? body : no_reply;
        line.when.offsets += came ? times.moment(row, column) - line.when.ms : qQNaN();
    }
    line.line = bodies.join(u',');
    return line;
}

} // namespace brivant
