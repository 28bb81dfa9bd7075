#include "operations/held_talk.h"

namespace brivant {

void held_talk::begin(talk what) {
    drop();
    held = std::move(what);
    held.waiting_frame().promise().run = run;
    resume(held.waiting_frame());
}

void held_talk::drop() {
    ++run;
    waiting = {};
    awaited = thing::nothing;
    is_asking = has_come = false;
    throw_in = nullptr;
    talk going = std::exchange(held, talk());
    if (depth > 0)
        dropped.push_back(std::move(going));
}

void held_talk::begin_to_wait(talk::handle who, thing what) {
    waiting = who;
    awaited = what;
    is_asking = true;
    has_come = false;
}

bool held_talk::has_come_meanwhile() {
    is_asking = false;
    if (has_come) {
        waiting = {};
        awaited = thing::nothing;
    }
    return came_at_once = std::exchange(has_come, false);
}

void held_talk::go_on() {
    if (is_asking) {
        has_come = true;
        return;
    }
    awaited = thing::nothing;
    if (const auto who = std::exchange(waiting, {}))
        resume(who);
}

void held_talk::resume(std::coroutine_handle<> who) {
    ++depth;
    who.resume();
    if (--depth == 0)
        dropped.clear();
    if (!held.is_over())
        return;
    const std::exception_ptr failure = held.failure();
    drop();
    on_over(failure);
}

void held_talk::tell_what_was_thrown() {
    if (throw_in)
        std::rethrow_exception(std::exchange(throw_in, nullptr));
}

} // namespace brivant
