#include "formats/figures_text.h"

namespace brivant {

namespace {

QString number(double value, int decimals) {
    return QString::number(value, 'f', decimals);
}

QString seconds(double value) {
    return number(value, 1) + QStringLiteral(" s");
}

figure_text figure_of(const speed_times& one) {
    const QString what =
        QStringLiteral("%1 to %2 km/h").arg(number(one.from_kmh(), 0), number(one.to_kmh(), 0));
    if (!one.best())
        return {what, QStringLiteral("not in this run"), false};
    const QString best = QStringLiteral("%1 s \u00B1 %2 s")
                             .arg(number(one.best()->seconds, 2), number(one.best()->uncertainty, 2));
    return {what, one.times() > 1 ? best + QStringLiteral(", the shortest of %1").arg(one.times()) : best};
}

figure_text figure_of(const drive_figures::of_column& one) {
    const QString unit = one.column.unit.trimmed();
    const QString name =
        unit.isEmpty() ? one.column.name : QStringLiteral("%1 (%2)").arg(one.column.name, unit);
    if (one.samples == 0)
        return {name, QStringLiteral("no value"), false};
    return {name, QStringLiteral("%1 to %2, mean %3, %4 samples")
                      .arg(number(one.smallest, 2), number(one.largest, 2), number(one.mean, 2))
                      .arg(one.samples)};
}

QString as_line(const figure_text& figure) {
    return QStringLiteral("%1: %2\n").arg(figure.name, figure.value);
}

} // namespace

QList<figure_text> figures_of_drive(const drive_figures& figures) {
    QList<figure_text> all{{QStringLiteral("Duration"), seconds(figures.duration_s())}};
    if (figures.has_speed()) {
        all += {{QStringLiteral("Distance"), number(figures.distance_km(), 3) + QStringLiteral(" km")},
                {QStringLiteral("Moving"), seconds(figures.moving_s())}};
        if (figures.without_speed_s() >= 0.05) // as shown
            all += {QStringLiteral("Speed not known"), seconds(figures.without_speed_s())};
    } else {
        all += {QStringLiteral("Distance and times"), QStringLiteral("the run has no vehicle speed (PID 0D)"),
                false};
    }
    if (const auto by_gps = figures.gps_distance_km())
        all += {QStringLiteral("Distance by GPS"), number(*by_gps, 3) + QStringLiteral(" km")};
    all += figures.has_fuel()
               ? figure_text{QStringLiteral("Fuel used"), number(figures.fuel_l(), 3) + QStringLiteral(" l")}
               : figure_text{QStringLiteral("Fuel used"), QStringLiteral("the run has no fuel rate (PID 5E)"),
                             false};
    if (const auto economy = figures.litres_a_100_km())
        all += {QStringLiteral("Fuel economy"), number(*economy, 2) + QStringLiteral(" l/100 km")};
    for (const speed_times& one : figures.times())
        all += figure_of(one);
    return all;
}

QString figures_as_text(const drive_figures& figures) {
    QString text;
    for (const figure_text& one : figures_of_drive(figures))
        text += as_line(one);
    for (const drive_figures::of_column& one : figures.columns())
        text += as_line(figure_of(one));
    return text;
}

} // namespace brivant
