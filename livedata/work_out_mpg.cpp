#include "base/string_table.h"
#include "livedata/sampling_talk.h"

namespace brivant {

namespace {

enum place { economy, speed, air_flow }; // in the sample set

constexpr double km_per_mile = 1.609344;
constexpr double litres_per_gallon = 3.78541178;
// The program's own factors of air to fuel and of fuel density.
constexpr double air_fuel_factor = 7.1073357;
constexpr double density_factor = 7.55987;

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

// The text follows the unit system, while matrix and log hold miles a gallon in either: on purpose.
void show_economy(sampling_talk& car, const QString& data, double miles_per_gallon) {
    const bool metric = car.toolies.units() == unit_system::metric;
    const double shown = metric ? miles_per_gallon * km_per_mile / litres_per_gallon : miles_per_gallon;
    sample_row& its_row = car.row(economy);
    its_row.value = data == no_reply ? no_reply : QString::number(shown, 'f', 6); // "inf" without air flow
    its_row.latest = car.toolies.get_OBDVal(data);
    car.note_extremes(its_row, shown);
    car.output_item(economy, data);
}

} // namespace

// A standing engine has no air flow and no economy: infinite, or no number at all.
double compute_MPG(double speed, double air_flow, bool by_density) {
    return by_density ? (speed * km_per_mile) / (air_flow * density_factor) * air_fuel_factor
                      : speed * air_fuel_factor / air_flow;
}

talk work_out_mpg(sampling_talk& car) {
    co_await car.ready_to_sample("Starting fule consumption");
    car.make_sure_all_are_supported();
    for (;;) {
        const QString moved = value_of(car, co_await car.ask_row(speed), speed);
        const QString burnt = value_of(car, co_await car.ask_row(air_flow), air_flow);
        const double mpg = compute_MPG(car.toolies.get_OBDVal(moved), car.toolies.get_OBDVal(burnt), true);
        const bool known = moved != no_reply && burnt != no_reply;
        const QString economy_of_it = known ? car.toolies.encode_to_OBD(QStringLiteral("E4"), mpg) : no_reply;
        show_economy(car, economy_of_it, mpg);
        car.add_to_line(economy_of_it + u',' + moved + u',' + burnt);
        car.end_of_sweep();
    }
}

} // namespace brivant
