#pragma once

#include "app/pictures/thumbnail.h"
#include "charts/plot_span.h"
#include "logs/stored_series.h"
#include "shell/program_core.h"

namespace brivant {

// A stored sampling run as the pictures of a run show it, read a slice at a time. `core` outlives it.
class plotted_run {
public:
    plotted_run(program_core& core, const log_header& log, qsizetype most_rows = stored_series::all_rows);

    // Reads for a moment, shorter than a frame of the screen. True while there is more.
    bool read_slice();
    const stored_series& series() const { return reader; }
    qsizetype rows() const { return reader.rows(); }
    // All of the run; its spans count from `origin`, the time of its first row.
    plot_span whole() const;
    double origin() const;
    // Rows of the span that are sweeps, and no gap.
    qsizetype sweeps_in(const plot_span& span) const;
    // That sweep, counted from 1.
    qsizetype sweep_at(double ms) const { return results.cur_log_points.times().row_at(ms) + 1; }
    bool is_empty() const { return results.these_samples.isEmpty(); }

    // What is shown beside the series: the averages of a span, or the values at a moment.
    void show_averages(const plot_span& span);
    void show_moment(double ms);
    // The units or the reading were changed in the preferences: takes them over. False when they are the same
    // as before.
    bool take_over_units();

    const run_pictures& pictures() const { return shown; }
    bool is_timed() const { return results.cur_log_points.times().are_known(); }
    // "14:03:07", or with its date before it; "" when it is not known.
    QString time_of(double ms, bool with_date) const;
    // A time of the run, "3:12.4": as fine as it is known and a span of that length tells apart.
    QString clock_of(double ms, qsizetype shown_ms) const;

private:
    struct row_range {
        qsizetype first;
        qsizetype end;
    };
    row_range rows_of(const plot_span& span) const;
    void list_columns();
    QString last_body(int column) const;
    void show_values(const std::function<double(int column)>& value_of);

    const mac_toolies& toolies;
    live_results results;
    stored_series reader;
    run_pictures shown;
    unit_system units;
    bool by_standard;
};

} // namespace brivant
