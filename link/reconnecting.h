#pragma once

#include "base/timers.h"

namespace brivant {

// When a lost link is opened again: after 1 s, 2 s, 4 s ... and at last every 30 s, until it holds or the
// person stops it. A try that neither opens the link nor fails within ten seconds counts as failed.
class reconnecting {
public:
    // `waiting` is called at the start of a pause and each second of it, with the seconds that are left and
    // the number of the try that follows it, from 1; `trying` when that try is to be made.
    reconnecting(timers& time_source, std::function<void(int seconds, int attempt)> waiting,
                 std::function<void(int attempt)> trying);

    // The link was lost, or the try came to nothing.
    void next_try();
    // The try has opened the link. Whether it holds is not known yet: the pauses go on growing.
    void opened() { timer.reset(); }
    void stop();
    // The computer has just been woken: for two minutes tries are short and follow each other, so that the
    // adapter has its link again within five seconds of being there.
    void hurry();
    bool is_active() const { return attempt > 0; }
    // Which try is next or under way, from 1; 0 when the link is not tried for.
    int tries() const { return attempt; }

    // The seconds before the try of that number.
    static int pause_before(int attempt);

private:
    void tick();
    bool is_in_a_hurry() const { return clock.microseconds() < hurried_until; }

    timers& clock;
    std::function<void(int, int)> on_waiting;
    std::function<void(int)> on_trying;
    timer_handle timer;
    int attempt = 0;
    int seconds_left = 0;
    std::int64_t hurried_until = 0;
};

} // namespace brivant
