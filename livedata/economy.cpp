#include "livedata/economy.h"

#include "livedata/second_value.h"
#include "obd/readings/sweep_values.h"

namespace brivant {

namespace {

constexpr double km_per_mile = 1.609344;
// The program's own factors of air to fuel and of fuel density.
constexpr double air_fuel_factor = 7.1073357;
constexpr double density_factor = 7.55987;
const QString speed = QStringLiteral("0D");
const QString air_flow = QStringLiteral("10");

// What column of a PID holds in these bodies; "~" without such a column.
QString body_of(const sampling_talk& car, const QStringList& bodies, const QString& pid) {
    for (int column = 0; column < car.columns(); ++column)
        if (car.results.these_samples[column].pid == pid)
            return bodies[column];
    return no_reply;
}

// Miles a gallon by the program's own factors; of a car that tells its fuel rate alone by that.
QString economy_of(sampling_talk& car, const QStringList& bodies) {
    const QString moved = body_of(car, bodies, speed);
    const QString burnt = body_of(car, bodies, air_flow);
    const QString by_rate = economy_by_physics(bodies, unit_system::imperial);
    if (moved == no_reply || (burnt == no_reply && by_rate == no_reply))
        return no_reply;
    const double mpg = burnt != no_reply
                           ? compute_MPG(car.toolies.get_OBDVal(moved), car.toolies.get_OBDVal(burnt), true)
                           : by_rate.section(u' ', 0, 0).toDouble();
    return car.toolies.encode_to_OBD(QStringLiteral("E4"), mpg);
}

// The program's text follows the unit system, while matrix and log hold miles a gallon in either: on purpose.
void show_economy(sampling_talk& car, int column, const QStringList& bodies) {
    read_row_of(car.results, column, bodies, car.toolies);
    sample_row& its_row = car.row(column);
    if (its_row.value != no_reply)
        car.note_extremes(its_row,
                          car.toolies.standard_reading() ? its_row.latest : its_row.value.toDouble());
    car.output_item(column, bodies[column]);
}

} // namespace

// A standing engine has no air flow and no economy: infinite, or no number at all.
double compute_MPG(double speed, double air_flow, bool by_density) {
    return by_density ? (speed * km_per_mile) / (air_flow * density_factor) * air_fuel_factor
                      : speed * air_fuel_factor / air_flow;
}

void take_economy(sampling_talk& car, QStringList& bodies) {
    for (int column = 0; column < car.columns(); ++column) {
        if (!is_worked_out(car.row(column).pid))
            continue;
        bodies[column] = economy_of(car, bodies);
        show_economy(car, column, bodies);
    }
}

} // namespace brivant
