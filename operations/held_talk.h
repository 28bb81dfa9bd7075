#pragma once

#include "operations/talk.h"

#include <functional>
#include <vector>

namespace brivant {

// The talk that is under way, and what it waits for. What it waits for may come inside the call that asks for
// it, as a simulated adapter answers: the talk then goes on when that call returns, so that neither the stack
// grows with the conversation nor a talk ends below its own feet. A talk that is dropped while it runs goes
// no further than its next question, and is destroyed when nobody runs in it any more.
class held_talk {
public:
    // `over`: the talk has ended by itself; null, or what it threw. It is gone by then.
    explicit held_talk(std::function<void(std::exception_ptr)> over) : on_over(std::move(over)) {}

    void begin(talk what);
    // It goes no further.
    void drop();
    bool is_on() const { return held.waiting_frame() != nullptr; }

    // What a talk can wait for.
    enum class thing { nothing, reply, link, time, person };
    thing waits_for() const { return awaited; }

    // Inside await_suspend(): `ask` asks for what is waited for. False when it has come already.
    template <typename Ask>
    bool wait(talk::handle who, thing what, Ask ask) {
        if (who.promise().run != run)
            return true; // it was dropped
        const int its_run = run;
        begin_to_wait(who, what);
        ask();
        return run != its_run || !has_come_meanwhile();
    }
    // What was waited for last came inside the call that asked for it.
    bool was_at_once() const { return came_at_once; }
    // What is waited for has come: the talk goes on.
    void go_on();
    // The talk goes on with this thrown at it.
    template <typename Thrown>
    void go_on_with(const Thrown& thrown) {
        if (awaited == thing::nothing)
            return;
        throw_in = std::make_exception_ptr(thrown);
        go_on();
    }
    // Inside await_resume(), first of all.
    void tell_what_was_thrown();

private:
    void begin_to_wait(talk::handle who, thing what);
    bool has_come_meanwhile();
    void resume(std::coroutine_handle<> who);

    std::function<void(std::exception_ptr)> on_over;
    talk held;
    std::vector<talk> dropped; // while something runs in them
    int run = 0;
    int depth = 0; // calls into talks that have not returned
    std::coroutine_handle<> waiting;
    thing awaited = thing::nothing;
    bool is_asking = false;
    bool has_come = false;
    bool came_at_once = false;
    std::exception_ptr throw_in;
};

} // namespace brivant
