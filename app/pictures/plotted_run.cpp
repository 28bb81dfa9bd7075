#include "app/pictures/plotted_run.h"

#include "base/shared_types.h"
#include "base/work_a_moment.h"
#include "charts/time_axis.h"
#include "charts/time_plot.h"
#include "livedata/second_value.h"
#include "persistence/stored_marks.h"

#include <QDateTime>
#include <algorithm>

namespace brivant {

namespace {

constexpr int slice_ms = 12; // below a frame of the screen
constexpr int lines_at_once = 500;
constexpr int decimals = 2;
constexpr qsizetype least_ms = 1000; // shown
constexpr qsizetype least_sweeps = 20;
constexpr qsizetype fine_ms = 60'000; // in a span of this, a pixel is less than a tenth of a second

QString number_text(double value, const QString& units) {
    if (std::isnan(value))
        return no_reply;
    const QString number = QString::number(value, 'f', decimals);
    return units == not_available ? number : number + u' ' + units.trimmed();
}

} // namespace

plotted_run::plotted_run(program_core& core, const log_header& log, qsizetype most_rows)
    : toolies(core.toolies),
      results([&core](const QString& body) { return core.toolies.shown_number(body); }),
      reader(core.db, log, results.cur_log_points, most_rows), shown{results, toolies, {}, {}, false},
      units(toolies.units()), by_standard(toolies.standard_reading()) {
    results.marks = marks_of_run(core.db, log.id);
}

bool plotted_run::read_slice() {
    const bool more = work_a_moment([this] { return reader.step(lines_at_once); });
    if (!more)
        list_columns();
    return more;
}

// A row for each column, in the order of the stored lines.
void plotted_run::list_columns() {
    results.these_samples.clear();
    results.pid_logitems_list = reader.pids();
    if (work_out_sweeps(results, toolies))
        reader.count_again();
    drawChartyItem item(toolies);
    item.use_this_pids(results.pid_logitems_list);
    shown.labels = item.work_out_labels(results.cur_log_points);
    for (int column = 0; column < reader.pids().size(); ++column) {
        sample_row row;
        row.item = row.pid = reader.pids().at(column);
        chart_label& label = shown.labels[column];
        if (row.pid.isEmpty())
            label.name = QStringLiteral("Column %1, no values").arg(column + 1);
        row.name = label.name;
        row.units = label.unit;
        row.other_value = read_value(last_body(column), toolies).other;
        if (!row.other_value.isEmpty())
            row.other_value += QStringLiteral(" (the last value)");
        results.these_samples += row;
    }
}

// Looked for among the last sweeps only.
QString plotted_run::last_body(int column) const {
    constexpr qsizetype most_looked_at = 1000;
    const sample_matrix& samples = results.cur_log_points;
    for (qsizetype row = rows() - 1; row >= std::max<qsizetype>(0, rows() - most_looked_at); --row)
        if (const QString body = samples.body(row, column); body.startsWith(QLatin1String("41")))
            return body;
    return no_reply;
}

void plotted_run::show_values(const std::function<double(int column)>& value_of) {
    shown.value_texts.clear();
    for (int column = 0; column < results.these_samples.size(); ++column) {
        sample_row& row = results.these_samples[column];
        row.latest = value_of(column);
        row.value = number_text(row.latest, row.units);
        shown.value_texts += row.value;
    }
}

double plotted_run::origin() const {
    return std::floor(results.cur_log_points.times().begin_of(0));
}

plot_span plotted_run::whole() const {
    const double end = results.cur_log_points.times().end_of(rows() - 1);
    const auto length = static_cast<qsizetype>(std::floor(end - origin())) + 1;
    return plot_span::all_of(rows() == 0 ? 0 : length, is_timed() ? least_ms : least_sweeps);
}

plotted_run::row_range plotted_run::rows_of(const plot_span& span) const {
    const sample_times& times = results.cur_log_points.times();
    const double first = origin() + static_cast<double>(span.first);
    return {times.rows_before(first), times.rows_before(first + static_cast<double>(span.count))};
}

qsizetype plotted_run::sweeps_in(const plot_span& span) const {
    const row_range shown_rows = rows_of(span);
    return shown_rows.end - shown_rows.first - results.cur_log_points.gaps(shown_rows.first, shown_rows.end);
}

void plotted_run::show_averages(const plot_span& span) {
    const row_range averaged = rows_of(span);
    show_values([&](int column) {
        return reader.averages().average(results.cur_log_points, column, averaged.first, averaged.end);
    });
}

void plotted_run::show_moment(double ms) {
    show_values([&](int column) { return value_at(results.cur_log_points, column, ms); });
}

bool plotted_run::take_over_units() {
    if (units == toolies.units() && by_standard == toolies.standard_reading())
        return false;
    units = toolies.units();
    by_standard = toolies.standard_reading();
    results.cur_log_points.units_changed();
    reader.count_again();
    list_columns();
    return true;
}

QString plotted_run::time_of(double ms, bool with_date) const {
    const std::optional<qint64>& start = reader.started_utc_ms();
    if (!start || !is_timed())
        return {};
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(*start + static_cast<qint64>(ms));
    return QLocale::c().toString(local, with_date ? QStringLiteral("d MMM yyyy HH:mm:ss")
                                                  : QStringLiteral("HH:mm:ss"));
}

QString plotted_run::clock_of(double ms, qsizetype shown_ms) const {
    return clock_text(ms, !reader.has_moments() ? 0 : shown_ms <= fine_ms ? 3 : 1);
}

} // namespace brivant
