#include "livedata/second_value.h"

#include "charts/outward_rounding.h"
#include "obd/standard_reading/pid_values.h"

#include <algorithm>

namespace brivant {

namespace {

// What the program works out itself is its own in either reading.
bool is_computed(const sample_row& row) {
    return row.pid.startsWith(u'E');
}

// The latest answer; the last row is the sweep under way.
QString latest_body(const sample_matrix& samples, int column) {
    for (qsizetype back = 1; back <= 2; ++back)
        if (const QString body = samples.body(samples.rows() - back, column); body.startsWith(u'4'))
            return body;
    return no_reply;
}

// As a run tells it: the first value is rounded outward.
QString extreme_text(const series_summary& seen, bool upward) {
    const double first = round_outward(seen.first, upward);
    return QString::number(upward ? std::max(first, seen.maximum) : std::min(first, seen.minimum), 'f', 6);
}

} // namespace

second_value read_value(const QString& body, const mac_toolies& toolies) {
    const QString own = toolies.translateResponse(body);
    const pid_value value = read_pid_value(body, toolies.units());
    if (!body.startsWith(QLatin1String("41")) || value.is_undefined)
        return {own, {}};
    const QString standard = pid_value_text(value);
    // The text may say the same although the number and the unit of a chart do not.
    const bool differ =
        !says_the_same(own, value) || readings_differ(body, toolies.shown_reading(), toolies.lists());
    if (toolies.standard_reading())
        return {standard, differ ? own : QString()};
    return {own, differ ? standard : QString()};
}

void read_again(live_results& results, const mac_toolies& toolies) {
    results.by_standard = toolies.standard_reading();
    sample_matrix& samples = results.cur_log_points;
    samples.units_changed();
    for (int column = 0; column < results.these_samples.size(); ++column) {
        sample_row& row = results.these_samples[column];
        if (is_computed(row))
            continue;
        row.units = toolies.shown_units(row.pid);
        if (!row.value.isEmpty() && row.value != no_reply) {
            const QString body = latest_body(samples, column);
            const second_value read = read_value(body, toolies);
            row.value = read.text;
            row.other_value = read.other;
            row.latest = toolies.shown_number(body);
        }
        const series_summary seen = samples.summary(column, 0, samples.rows());
        row.max = seen.empty() ? QStringLiteral("max") : extreme_text(seen, true);
        row.min = seen.empty() ? QStringLiteral("min") : extreme_text(seen, false);
    }
}

} // namespace brivant
