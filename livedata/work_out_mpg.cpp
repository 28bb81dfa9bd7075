#include "base/string_table.h"
#include "livedata/economy.h"

namespace brivant {

namespace {

constexpr int economy = 0; // in the sample set
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

} // namespace

talk work_out_mpg(sampling_talk& car) {
    co_await car.ready_to_sample("Starting fule consumption");
    const bool tells_rate = car.toolies.standard_reading() && car.engine_ecu().pidSet.contains(fuel_rate);
    car.fit_set({tells_rate ? fuel_rate : fuel_type}, tells_rate ? speed : speed + u' ' + air_flow);
    car.make_sure_all_are_supported();
    if (car.speed() != sampling_speed::usual)
        co_await sample_for_ever(car);
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
        take_economy(car, bodies);
        car.end_of_sweep(bodies);
    }
}

} // namespace brivant
