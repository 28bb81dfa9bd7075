#include "diagnostics/car_presence.h"

#include "obd/reply_text.h"

namespace brivant {

namespace {

constexpr int most_lost_in_a_row = 3;

// The adapter says that it has not reached the car.
bool says_no_car(const reply& what_came) {
    return string_has_Tokens(what_came.raw().text,
                             QStringLiteral("UNABLETOCONNECT|BUSINIT:ERROR|CANERROR|BUSERROR|FBERROR"));
}

} // namespace

talk make_sure_the_car_answers(diagnostic_talk& car) {
    sent_command question = command_of(QStringLiteral("01 00|12.0"), QStringLiteral("4100|7F01"), false);
    question.is_sent_once = true;
    for (int asked = 0; asked < most_lost_in_a_row; ++asked) {
        const reply there = co_await car.send(question);
        if (!there.holds_nothing())
            co_return;
        if (!there.no_data()) // which may have been a late answer to a request before
            break;
    }
    car.give_up_the_car();
}

talk car_presence::ask(sent_command request, bool announced, reply& what_came) {
    if (was_lost)
        request.is_sent_once = true;
    what_came = co_await car.send(request);
    const bool is_lost = says_no_car(what_came) || (announced && what_came.no_data());
    was_lost = is_lost;
    lost_in_a_row = is_lost ? lost_in_a_row + 1 : 0;
    if (lost_in_a_row < most_lost_in_a_row)
        co_return;
    co_await make_sure_the_car_answers(car);
    was_lost = false;
    lost_in_a_row = 0;
}

} // namespace brivant
