#include "formats/drive_figures.h"

#include "formats/export_columns.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr double ms_an_hour = 3'600'000;
constexpr double litres_a_gallon = 3.785411784; // US

QString unit_of(const run_column& column) {
    return column.unit.section(u' ', 0, 0).toLower(); // "km/h by SAE J1979"
}

// What a number in the unit is multiplied with; 0 for a unit that is not known.
double speed_factor(const run_column& column, bool by_standard) {
    const QString unit = unit_of(column);
    if (unit == QLatin1String("kph") || unit == QLatin1String("km/h"))
        return 1;
    // The program's own reading divides by 1.6.
    return unit == QLatin1String("mph") ? (by_standard ? 1.609344 : 1.6) : 0;
}

double fuel_factor(const run_column& column) {
    const QString unit = unit_of(column);
    return unit == QLatin1String("l/h") ? 1 : unit == QLatin1String("gal/h") ? litres_a_gallon : 0;
}

} // namespace

drive_figures::drive_figures(const run_head& head) : run(head), gathered(head.columns.size()) {
    for (qsizetype i = 0; i < run.columns.size(); ++i) {
        const run_column& column = run.columns[i];
        if (const double factor = speed_factor(column, run.by_standard);
            column.pid == QLatin1String("0D") && factor > 0) {
            speed_column = i;
            to_kmh = factor;
        } else if (const double litres = fuel_factor(column);
                   column.pid == QLatin1String("5E") && litres > 0) {
            fuel_column = i;
            to_litres = litres;
        }
    }
    if (has_speed())
        sprints = {{0, 50}, {0, 100}, {80, 120}};
}

void drive_figures::add(const timed_sweep& sweep) {
    first_ms = has_begun ? first_ms : sweep.ms;
    last_ms = sweep.ms;
    has_begun = true;
    take_position(sweep);
    std::optional<double> km;
    std::optional<double> litres;
    for (qsizetype i = 0; i < gathered.size(); ++i) {
        const step line = take(i, sweep);
        if (i == speed_column && line.ms > 0) {
            km = line.value * to_kmh * line.ms / ms_an_hour;
            with_speed += line.ms / 1000;
            moving += line.value > 0 ? line.ms / 1000 : 0;
        } else if (i == fuel_column && line.ms > 0) {
            litres = line.value * to_litres * line.ms / ms_an_hour;
        }
    }
    distance += km.value_or(0);
    fuel += litres.value_or(0);
    if (litres && km) {
        shared_km += *km;
        shared_litres += *litres;
    }
}

// Sweeps that share a fix tell its speed again.
void drive_figures::take_position(const timed_sweep& sweep) {
    constexpr double same_moment = 1; // ms: what rounding may differ by
    const auto speed = cell_of(sweep, {export_column::kind::speed, 0, {}, {}});
    if (!speed)
        return;
    const sample now{sweep.ms + sweep.position->offset_ms, *speed};
    if (latest_gps_speed && now.ms - latest_gps_speed->ms < same_moment)
        return;
    const auto before = std::exchange(latest_gps_speed, now);
    if (before && now.ms - before->ms <= longest_gap_ms)
        gps_distance =
            gps_distance.value_or(0) + (before->value + now.value) / 2 * (now.ms - before->ms) / 1e6;
}

// Takes the sweep's sample of the column in; the line that it ends.
drive_figures::step drive_figures::take(qsizetype column, const timed_sweep& sweep) {
    using kind = export_column::kind;
    const auto value = cell_of(sweep, {kind::value, column, {}, {}});
    if (!value)
        return {0, 0};
    progress& so_far = gathered[column];
    const double ms = sweep.ms + cell_of(sweep, {kind::offset, column, {}, {}}).value_or(0);
    so_far.smallest = so_far.samples ? std::min(so_far.smallest, *value) : *value;
    so_far.largest = so_far.samples ? std::max(so_far.largest, *value) : *value;
    so_far.sum += *value;
    ++so_far.samples;
    if (column == speed_column)
        for (speed_times& sprint : sprints)
            sprint.add(ms, *value * to_kmh, longest_gap_ms);
    const auto before = std::exchange(so_far.latest, sample{ms, *value});
    if (!before || ms <= before->ms || ms - before->ms > longest_gap_ms)
        return {0, 0};
    const step line{ms - before->ms, (before->value + *value) / 2};
    so_far.area += line.value * line.ms;
    so_far.under += line.ms;
    return line;
}

QList<drive_figures::of_column> drive_figures::columns() const {
    QList<of_column> all;
    for (qsizetype i = 0; i < gathered.size(); ++i) {
        const progress& one = gathered[i];
        const double mean = one.under > 0     ? one.area / one.under
                            : one.samples > 0 ? one.sum / double(one.samples) // each stands alone
                                              : 0;
        all.append({run.columns[i], one.samples, one.smallest, one.largest, mean});
    }
    return all;
}

std::optional<double> drive_figures::litres_a_100_km() const {
    return shared_km > 0 ? std::optional(shared_litres / shared_km * 100) : std::nullopt;
}

} // namespace brivant
