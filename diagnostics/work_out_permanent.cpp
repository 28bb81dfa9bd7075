#include "diagnostics/car_presence.h"

#include "diagnostics/permanent_codes.h"

namespace brivant {

namespace {

// Both requests are newer than many cars: a refusal is an answer.
car_talk::asking ask_the_car(diagnostic_talk& car, const QString& command) {
    return car.at(command, QStringLiteral("%1|7F%2|?").arg(positive_reply_of(command), command.left(2)));
}

} // namespace

talk work_out_permanent(diagnostic_talk& car) {
    co_await car.ready("Reading the permanent codes");
    co_await car.at("AT H1", "OK");
    const reply codes = co_await ask_the_car(car, "0A");
    car.tell(part::permanent, {permanent_request, codes, {}, {}});
    car.show("Asking what the car has checked in this drive cycle");
    const reply monitors = co_await ask_the_car(car, "01 41");
    car.tell(part::permanent, {drive_cycle_request, monitors, {}, {}});
    if (codes.holds_nothing() && monitors.holds_nothing()) // older than both requests, or not there
        co_await make_sure_the_car_answers(car);
    car.show(read_permanent_codes(car.results, car.toolies).summary());
    car.view.play_sound(sound_done);
}

} // namespace brivant
