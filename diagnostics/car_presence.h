#pragma once

#include "diagnostics/diagnostic_talk.h"

namespace brivant {

// Whether the car still answers, while an operation asks it for many things. After a first request that came
// to nothing as it does when the ignition is switched off, the next ones are sent once instead of four times;
// after three in a row the car is asked for what every car answers, and the operation ends when that comes to
// nothing as well.
class car_presence {
public:
    // Everything referred to outlives it.
    explicit car_presence(diagnostic_talk& its_car) : car(its_car) {}

    // Sends the request; `announced`: the car has said that it can answer it, so that "NO DATA" counts, too.
    talk ask(sent_command request, bool announced, reply& what_came);

private:
    diagnostic_talk& car;
    int lost_in_a_row = 0;
    bool was_lost = false; // since the last answer
};

// Ends the operation as failed when nobody answers "01 00".
talk make_sure_the_car_answers(diagnostic_talk& car);

} // namespace brivant
