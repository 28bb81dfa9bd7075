#include "operations/put_back_settings.h"

namespace brivant {

talk put_back_settings(car_talk& car) {
    while (car.link.has_changed_settings()) {
        sent_command undo = command_of(car.link.undo_of_last_change() + u'\r', QStringLiteral("OK"), false);
        undo.why = sent_command::purpose::on_its_own;
        undo.is_asked_again = false;
        undo.is_sent_once = undo.is_a_trial = true;
        const reply told = co_await car.send(undo);
        if (!told.is_none()) {
            car.link.last_change_is_undone();
        } else {
            car.link.forget_changed_settings();
            car.link.set_up_next_time(true);
        }
    }
}

} // namespace brivant
