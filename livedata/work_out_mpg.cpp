#include "base/string_table.h"
#include "livedata/sampling_talk.h"
#include "livedata/second_value.h"
#include "obd/readings/sweep_values.h"

namespace brivant {

namespace {

constexpr int economy = 0; // in the sample set
constexpr double km_per_mile = 1.609344;
// The program's own factors of air to fuel and of fuel density.
constexpr double air_fuel_factor = 7.1073357;
constexpr double density_factor = 7.55987;
const QString speed = QStringLiteral("0D");
const QString air_flow = QStringLiteral("10");
const QString fuel_rate = QStringLiteral("5E");
const QString fuel_type = QStringLiteral("51");

// A reply that does not come ends a run that has no sweep yet.
QString value_of(sampling_talk& car, const reply& came, int index) {
    if (came.is_none() && car.results.sample_cnt == 0) {
        if (!car.link.adapter().adapter_ready())
            car.check_the_run();
        car.show("Speed or air flow did not come: the run has ended. Is the ignition on? Start again (F5)");
        throw left{};
    }
    const QString data = car.data_of_reply(came, index);
    car.take(index, data);
    car.check_the_run();
    return data;
}

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
void show_economy(sampling_talk& car, const QStringList& bodies) {
    read_row_of(car.results, economy, bodies, car.toolies);
    sample_row& its_row = car.row(economy);
    if (its_row.value != no_reply)
        car.note_extremes(its_row,
                          car.toolies.standard_reading() ? its_row.latest : its_row.value.toDouble());
    car.output_item(economy, bodies[economy]);
}

} // namespace

// A standing engine has no air flow and no economy: infinite, or no number at all.
double compute_MPG(double speed, double air_flow, bool by_density) {
    return by_density ? (speed * km_per_mile) / (air_flow * density_factor) * air_fuel_factor
                      : speed * air_fuel_factor / air_flow;
}

talk work_out_mpg(sampling_talk& car) {
    co_await car.ready_to_sample("Starting fule consumption");
    const bool tells_rate = car.toolies.standard_reading() && car.engine_ecu().pidSet.contains(fuel_rate);
    car.fit_set({tells_rate ? fuel_rate : fuel_type}, tells_rate ? speed : speed + u' ' + air_flow);
    car.make_sure_all_are_supported();
    QString its_fuel; // does not change: asked once
    for (;;) {
        QStringList bodies(car.columns(), no_reply);
        for (int column = economy + 1; column < car.columns(); ++column) {
            const bool is_fuel = car.row(column).pid == fuel_type;
            if (is_fuel && !its_fuel.isEmpty()) {
                car.take(column, its_fuel);
                bodies[column] = its_fuel;
                continue;
            }
            const reply came = co_await car.ask_row(column);
            bodies[column] = value_of(car, came, column);
            if (is_fuel && bodies[column] != no_reply)
                its_fuel = bodies[column];
        }
        bodies[economy] = economy_of(car, bodies);
        show_economy(car, bodies);
        car.add_to_line(bodies.join(u','));
        car.end_of_sweep();
    }
}

} // namespace brivant
