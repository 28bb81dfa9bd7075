#include "diagnostics/diagnostic_talk.h"

#include "diagnostics/permanent_codes.h"
#include "obd/reply_text.h"

namespace {

// Both requests are newer than many cars: a refusal is an answer.
car_talk::asking ask_the_car(diagnostic_talk& car, const QString& command) {
    return car.at(command, QStringLiteral("%1|7F%2|?").arg(positive_reply_of(command), command.left(2)));
}

void keep_reply(diagnostic_talk& car, const QString& request, const QString& reply) {
    car.results.kept[result_list::permanent] += {request, reply, car.form(), QString(), 0, 0};
    car.view.reload(QStringLiteral("permanent"));
}

} // namespace

talk work_out_permanent(diagnostic_talk& car) {
    co_await car.ready("Reading the permanent codes");
    co_await car.at("AT H1", "OK");
    keep_reply(car, permanent_request, co_await ask_the_car(car, "0A"));
    car.show("Asking what the car has checked in this drive cycle");
    keep_reply(car, drive_cycle_request, co_await ask_the_car(car, "01 41"));
    car.show(read_permanent_codes(car.results, car.toolies).summary());
    car.view.play_sound(sound_done);
}
