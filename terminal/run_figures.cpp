#include "terminal/run_figures.h"

#include "formats/drive_figures.h"
#include "persistence/stored_run.h"
#include "terminal/output.h"

#include <QJsonArray>
#include <QJsonObject>

namespace brivant {

namespace {

QString number(double value, int decimals) {
    return QString::number(value, 'f', decimals);
}

QJsonValue known(bool is_known, double value) {
    return is_known ? QJsonValue(value) : QJsonValue();
}

QJsonObject figures_as_json(const drive_figures& figures) {
    QJsonArray times;
    for (const speed_times& one : figures.times())
        times += QJsonObject{
            {"from_kmh", one.from_kmh()},
            {"to_kmh", one.to_kmh()},
            {"times", one.times()},
            {"seconds", known(one.best().has_value(), one.best() ? one.best()->seconds : 0)},
            {"uncertainty_s", known(one.best().has_value(), one.best() ? one.best()->uncertainty : 0)}};
    QJsonArray columns;
    for (const drive_figures::of_column& one : figures.columns())
        columns += QJsonObject{{"pid", one.column.pid},
                               {"name", one.column.name},
                               {"unit", one.column.unit.trimmed()},
                               {"samples", one.samples},
                               {"smallest", known(one.samples > 0, one.smallest)},
                               {"largest", known(one.samples > 0, one.largest)},
                               {"mean", known(one.samples > 0, one.mean)}};
    const auto economy = figures.litres_a_100_km();
    return {{"duration_s", figures.duration_s()},
            {"distance_km", known(figures.has_speed(), figures.distance_km())},
            {"moving_s", known(figures.has_speed(), figures.moving_s())},
            {"without_speed_s", figures.without_speed_s()},
            {"fuel_l", known(figures.has_fuel(), figures.fuel_l())},
            {"l_per_100_km", known(economy.has_value(), economy.value_or(0))},
            {"times", times},
            {"columns", columns}};
}

QString sprint_text(const speed_times& one) {
    const QString what =
        QStringLiteral("%1 to %2 km/h").arg(number(one.from_kmh(), 0), number(one.to_kmh(), 0));
    if (!one.best())
        return what + QStringLiteral(": not in this run\n");
    const QString best = QStringLiteral(": %1 s \u00B1 %2 s")
                             .arg(number(one.best()->seconds, 2), number(one.best()->uncertainty, 2));
    return what + best +
           (one.times() > 1 ? QStringLiteral(", the shortest of %1\n").arg(one.times())
                            : QStringLiteral("\n"));
}

QString figures_as_text(const drive_figures& figures) {
    QString text = QStringLiteral("Duration: %1 s\n").arg(number(figures.duration_s(), 1));
    if (figures.has_speed()) {
        text += QStringLiteral("Distance: %1 km\nMoving: %2 s\n")
                    .arg(number(figures.distance_km(), 3), number(figures.moving_s(), 1));
        if (figures.without_speed_s() >= 0.05) // as shown
            text += QStringLiteral("Speed not known: %1 s\n").arg(number(figures.without_speed_s(), 1));
    } else {
        text += QStringLiteral("Distance and times: the run has no vehicle speed (PID 0D)\n");
    }
    text += figures.has_fuel() ? QStringLiteral("Fuel used: %1 l\n").arg(number(figures.fuel_l(), 3))
                               : QStringLiteral("Fuel used: the run has no fuel rate (PID 5E)\n");
    if (const auto economy = figures.litres_a_100_km())
        text += QStringLiteral("Fuel economy: %1 l/100 km\n").arg(number(*economy, 2));
    for (const speed_times& one : figures.times())
        text += sprint_text(one);
    for (const drive_figures::of_column& one : figures.columns()) {
        const QString unit = one.column.unit.trimmed();
        text += QStringLiteral("%1%2: ").arg(one.column.name,
                                             unit.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(unit));
        text += one.samples == 0
                    ? QStringLiteral("no value\n")
                    : QStringLiteral("%1 to %2, mean %3, %4 samples\n")
                          .arg(number(one.smallest, 2), number(one.largest, 2), number(one.mean, 2))
                          .arg(one.samples);
    }
    return text;
}

} // namespace

bool print_figures(mac_toolies& toolies, const log_header& log, bool as_json) {
    database& db = toolies.store();
    stored_run run(db, log, toolies.lists(), toolies.shown_reading());
    const bool is_told =
        db.for_each_row(run.statement(), [&](const QStringList& row) { return !run.tell_columns(row); });
    drive_figures figures(run.head(QString()));
    const bool is_read = is_told && db.for_each_row(run.statement(), [&](const QStringList& row) {
        figures.add(run.sweep_of(row));
        return true;
    });
    if (is_read && as_json)
        print_json(figures_as_json(figures));
    else if (is_read)
        print(figures_as_text(figures));
    return is_read;
}

} // namespace brivant
