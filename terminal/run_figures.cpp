#include "terminal/run_figures.h"

#include "formats/figures_text.h"
#include "logs/stored_figures.h"
#include "terminal/output.h"

#include <QJsonArray>
#include <QJsonObject>

namespace brivant {

namespace {

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
            {"gps_distance_km",
             known(figures.gps_distance_km().has_value(), figures.gps_distance_km().value_or(0))},
            {"moving_s", known(figures.has_speed(), figures.moving_s())},
            {"without_speed_s", figures.without_speed_s()},
            {"fuel_l", known(figures.has_fuel(), figures.fuel_l())},
            {"l_per_100_km", known(economy.has_value(), economy.value_or(0))},
            {"times", times},
            {"columns", columns}};
}

} // namespace

QString print_figures(mac_toolies& toolies, const log_header& log, bool as_json) {
    constexpr int lines_at_once = 1000;
    stored_figures reader(toolies, log);
    while (reader.step(lines_at_once)) {
    }
    const auto& figures = reader.figures();
    if (figures && as_json)
        print_json(figures_as_json(*figures));
    else if (figures)
        print(figures_as_text(*figures));
    return reader.problem();
}

} // namespace brivant
