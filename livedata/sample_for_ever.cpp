#include "livedata/economy.h"
#include "livedata/fast_sampling.h"
#include "livedata/probe_adapter.h"

namespace brivant {

namespace {

// Every column in turn, a request each.
talk ask_each(sampling_talk& car, QStringList& bodies) {
    for (int index = 0; index < car.columns(); ++index) {
        if (is_worked_out(car.row(index).pid))
            continue;
        if (car.is_turn_of(index)) {
            const reply what_came = co_await car.ask_row(index);
            bodies[index] = car.data_of_reply(what_came, index);
        }
        car.take(index, bodies[index]);
        car.tell_sensor(index);
        car.check_the_run();
    }
}

talk sample_fast(sampling_talk& car) {
    fast_sampling fast(car);
    co_await fast.speed_up();
    for (;;) {
        QStringList bodies(car.columns(), no_reply);
        co_await fast.ask_sweep(bodies);
        take_economy(car, bodies);
        car.end_of_sweep(bodies);
    }
}

} // namespace

// --- what is known of the adapter ---

request_plan::abilities sampling_talk::abilities_of_adapter() const {
    return passport().value_or(unkept).abilities();
}

void sampling_talk::adapter_learnt(const request_plan::abilities& what) {
    const std::optional<adapter_passport> before = passport();
    adapter_passport now = before.value_or(unkept);
    now.learn(what);
    if (!before)
        unkept = now;
    else if (now != *before)
        keep_passport(now);
}

// --- the run ---

talk sample_for_ever(sampling_talk& car) {
    if (car.speed() != sampling_speed::usual) {
        if (!car.passport() && !car.link.place().address().isEmpty())
            co_await probe_adapter(car);
        co_await sample_fast(car);
    }
    for (;;) {
        QStringList bodies(car.columns(), no_reply);
        co_await ask_each(car, bodies);
        take_economy(car, bodies);
        car.end_of_sweep(bodies);
    }
}

} // namespace brivant
