#include "livedata/second_value.h"

#include "charts/outward_rounding.h"
#include "livedata/economy.h"
#include "obd/readings/sweep_values.h"
#include "obd/standard_reading/pid_values.h"

#include <algorithm>
#include <cmath>

namespace brivant {

namespace {

const QString fuel_economy = QStringLiteral("E4");
const QString boost = QStringLiteral("E5");
constexpr double km_per_mile = 1.609344;
constexpr double litres_per_gallon = 3.78541178;

bool is_computed(const QString& pid) {
    return pid == fuel_economy || pid == boost;
}

// The latest answer; the last row is the sweep under way.
QString latest_body(const sample_matrix& samples, int column) {
    for (qsizetype back = 1; back <= 2; ++back)
        if (const QString body = samples.body(samples.rows() - back, column); body.startsWith(u'4'))
            return body;
    return no_reply;
}

QStringList latest_bodies(const live_results& results) {
    QStringList bodies;
    for (int column = 0; column < results.cur_log_points.columns(); ++column)
        bodies += latest_body(results.cur_log_points, column);
    return bodies;
}

// As a run tells it: the first value is rounded outward. `factor`: to the number that the text has.
QString extreme_text(const series_summary& seen, bool upward, double factor) {
    const double first = round_outward(seen.first * factor, upward);
    const double rest = (upward ? seen.maximum : seen.minimum) * factor;
    return QString::number(upward ? std::max(first, rest) : std::min(first, rest), 'f', 6);
}

QString body_of(const QStringList& bodies, const QString& pid) {
    const auto found = std::find_if(bodies.begin(), bodies.end(), [&pid](const QString& body) {
        return body.startsWith(QStringLiteral("41") + pid);
    });
    return found == bodies.end() ? no_reply : *found;
}

// The program's own text; "inf" without air flow.
QString own_economy(const QStringList& bodies, const mac_toolies& toolies) {
    const QString moved = body_of(bodies, QStringLiteral("0D"));
    const QString burnt = body_of(bodies, QStringLiteral("10"));
    if (moved == no_reply || burnt == no_reply)
        return no_reply;
    const double mpg = compute_MPG(toolies.get_OBDVal(moved), toolies.get_OBDVal(burnt), true);
    const bool metric = toolies.units() == unit_system::metric;
    return QString::number(metric ? mpg * km_per_mile / litres_per_gallon : mpg, 'f', 6);
}

// Whether two texts begin with nearly the same number; no number is as good as another one that is none.
bool same_number(const QString& one, const QString& other) {
    constexpr double rounding = 0.01;
    const auto number = [](const QString& text) {
        bool is_number = false;
        const double value = text.section(u' ', 0, 0).toDouble(&is_number);
        return is_number && std::isfinite(value) ? value : qQNaN();
    };
    const double a = number(one);
    const double b = number(other);
    return std::isnan(a) ? std::isnan(b) : std::abs(a - b) <= std::max(rounding, rounding * std::abs(b));
}

// The text of the program's own PID E4 or E5 in a sweep of these bodies.
second_value read_computed(const QString& pid, const QStringList& bodies, const mac_toolies& toolies) {
    const bool is_economy = pid == fuel_economy;
    const QString own =
        is_economy ? own_economy(bodies, toolies) : toolies.translateResponse(body_of(bodies, pid));
    const QString standard =
        is_economy ? economy_by_physics(bodies, toolies.units()) : boost_by_physics(bodies, toolies.units());
    const bool differ = !same_number(own, standard);
    if (toolies.standard_reading())
        return {standard, differ ? own : QString()};
    return {own, differ ? standard : QString()};
}

} // namespace

second_value read_value(const QString& body, const mac_toolies& toolies, const QStringList& sweep) {
    const QString own = toolies.translateResponse(body);
    sample_reading reading = toolies.shown_reading();
    reading.scales = scales_of_sweep(sweep);
    const pid_value value = read_pid_value(body, {reading.units, reading.scales});
    if (!body.startsWith(QLatin1String("41")) || value.is_undefined)
        return {own, {}};
    const QString standard = pid_value_text(value);
    // The text may say the same although the number and the unit of a chart do not.
    const bool differ = !says_the_same(own, value) || readings_differ(body, reading, toolies.lists());
    if (toolies.standard_reading())
        return {standard, differ ? own : QString()};
    return {own, differ ? standard : QString()};
}

void read_row(live_results& results, int column, const QString& body, const mac_toolies& toolies) {
    if (results.needs_sweeps) {
        QStringList bodies = latest_bodies(results);
        bodies[column] = body;
        return read_row_of(results, column, bodies, toolies);
    }
    sample_row& row = results.these_samples[column];
    const second_value read = read_value(body, toolies);
    row.value = read.text;
    row.other_value = read.other;
    row.latest = toolies.shown_number(body);
}

void read_row_of(live_results& results, int column, const QStringList& bodies, const mac_toolies& toolies) {
    sample_row& row = results.these_samples[column];
    const second_value read = is_computed(row.pid) ? read_computed(row.pid, bodies, toolies)
                                                   : read_value(bodies[column], toolies, bodies);
    row.value = read.text;
    row.other_value = read.other;
    row.latest = sampled_numbers(bodies, toolies.shown_reading(), toolies.lists()).value(column);
}

bool work_out_sweeps(live_results& results, const mac_toolies& toolies) {
    QStringList pids;
    for (const QString& item : std::as_const(results.pid_logitems_list))
        pids += item.section(u'|', 0, 0);
    const QList<int> columns = columns_of_sweep(pids);
    results.needs_sweeps = !columns.isEmpty();
    results.cur_log_points.work_out_of_rows(columns, [&toolies](const QStringList& bodies, int column) {
        return sampled_numbers(bodies, toolies.shown_reading(), toolies.lists()).value(column);
    });
    return results.needs_sweeps;
}

void read_again(live_results& results, const mac_toolies& toolies) {
    results.by_standard = toolies.standard_reading();
    sample_matrix& samples = results.cur_log_points;
    samples.units_changed();
    const bool metric = toolies.units() == unit_system::metric;
    for (int column = 0; column < results.these_samples.size(); ++column) {
        sample_row& row = results.these_samples[column];
        row.units = toolies.shown_units(row.pid);
        if (!row.value.isEmpty() && row.value != no_reply)
            read_row(results, column, latest_body(samples, column), toolies);
        // The program's imperial text of the economy is in another unit than its number: on purpose.
        const bool is_other_unit = row.pid == fuel_economy && !results.by_standard && !metric;
        const double factor = is_other_unit ? litres_per_gallon : 1;
        const series_summary seen = samples.summary(column, 0, samples.rows());
        row.max = seen.empty() ? QStringLiteral("max") : extreme_text(seen, true, factor);
        row.min = seen.empty() ? QStringLiteral("min") : extreme_text(seen, false, factor);
    }
}

} // namespace brivant
