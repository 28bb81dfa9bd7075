#pragma once

#include "app/pictures/thumbnail.h"
#include "charts/plot_span.h"
#include "logs/stored_series.h"
#include "shell/program_core.h"

namespace brivant {

// A stored sampling run as the pictures of a run show it, read a slice at a time. `core` outlives it.
class plotted_run {
public:
    plotted_run(program_core& core, const log_header& log, qsizetype most_rows = stored_series::most_cells);

    // Reads for a moment, shorter than a frame of the screen. True while there is more.
    bool read_slice();
    const stored_series& series() const { return reader; }
    qsizetype rows() const { return reader.rows(); }
    // Rows of the span that are sweeps, and no gap.
    qsizetype sweeps_in(const plot_span& span) const {
        return span.count - results.cur_log_points.gaps(span.first, span.end());
    }
    bool is_empty() const { return results.these_samples.isEmpty(); }

    // What is shown beside the series: the averages of a span, or the values of one row.
    void show_averages(const plot_span& span);
    void show_row(qsizetype row);
    // The units or the reading were changed in the preferences: takes them over. False when they are the same
    // as before.
    bool take_over_units();

    const run_pictures& pictures() const { return shown; }
    // "14:03:07", or with its date before it; "" when it is not known.
    QString time_of(qsizetype row, bool with_date) const;
    // From the first row to that one, "00:03:12"; "" when it is not known.
    QString elapsed(qsizetype from, qsizetype to) const;

private:
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
