#include "terminal/run_recorder.h"

#include "base/anonymity.h"
#include "persistence/vehicles.h"
#include "toolkit/mac_toolies.h"

#include <cmath>
#include <cstdio>

namespace brivant {

namespace {

bool opens_standard_output(QFile& out) {
    return out.open(stdout, QIODevice::WriteOnly | QIODevice::Unbuffered);
}

// A moment has no more than microseconds.
double to_microseconds(double ms) {
    return std::round(ms * 1000) / 1000;
}

} // namespace

QString run_recorder::wrong_options(const launch_options& options) {
    const run_format* format = run_format_of(options.format);
    if (!format)
        return {};
    if (options.json)
        return QStringLiteral("Only one of --json and --format can be chosen.");
    if (format->what == run_format::kind::gpx && options.anonymous)
        return QStringLiteral("With anonymity on no position is given away: no track is written.");
    QFile out;
    if (format->what == run_format::kind::mdf4 && (!opens_standard_output(out) || out.isSequential()))
        return QStringLiteral("MDF is written at earlier places, too: send it to a file (> run.mf4).");
    return {};
}

run_recorder::run_recorder(const run_format& format, program_core& its_core, const live_results& its_results)
    : core(its_core), results(its_results), writer(make_run_writer(format.what, out)) {
    opens_standard_output(out);
}

run_head run_recorder::head() const {
    run_head its{.start_ms = results.moments.started_utc_ms(),
                 .vehicle = {},
                 .by_standard = results.by_standard,
                 .units = results.metric ? unit_system::metric : unit_system::imperial,
                 .version = QStringLiteral(BV_VERSION),
                 .columns = {},
                 .has_offsets = true,
                 .has_positions = core.position.is_there() && !is_anonymous()};
    if (const auto one = vehicle_with_id(core.toolies.store(), core.car.cur_veh_id()))
        its.vehicle = one->name;
    for (const sample_row& row : results.these_samples)
        its.columns += {row.pid, row.name, row.units == not_available ? QString() : row.units.trimmed()};
    return its;
}

timed_sweep run_recorder::latest_row() const {
    const sample_times& times = results.cur_log_points.times();
    const qsizetype row = times.rows() - 2;
    timed_sweep sweep;
    sweep.ms = to_microseconds(times.begin_of(row));
    if (!is_anonymous())
        sweep.position = results.position;
    for (int column = 0; column < results.these_samples.size(); ++column) {
        const double value = results.these_samples.at(column).latest;
        const bool has_value = std::isfinite(value) && results.was_asked(column);
        sweep.values.push_back(has_value ? std::optional(value) : std::nullopt);
        sweep.offsets_ms.push_back(has_value ? to_microseconds(times.moment(row, column) - sweep.ms)
                                             : qQNaN());
    }
    return sweep;
}

bool run_recorder::take_row() {
    if (!std::exchange(has_begun, true) && !writer->begin(head()))
        return false;
    for (; marks_written < results.marks.size(); ++marks_written) {
        if (!writer->mark(results.marks.at(marks_written)))
            return false;
    }
    return writer->add(latest_row());
}

bool run_recorder::end() {
    return !has_begun || writer->end();
}

} // namespace brivant
