#include "link/reconnecting.h"

#include <algorithm>

namespace brivant {

namespace {
constexpr int longest_pause_s = 30;
constexpr int second_ms = 1000;
constexpr int longest_try_ms = 10000;
constexpr int short_try_ms = 4000;
constexpr std::int64_t hurry_us = 120'000'000;
} // namespace

reconnecting::reconnecting(timers& time_source, std::function<void(int, int)> waiting,
                           std::function<void(int)> trying)
    : clock(time_source), on_waiting(std::move(waiting)), on_trying(std::move(trying)) {}

int reconnecting::pause_before(int attempt) {
    int seconds = 1;
    while (--attempt > 0 && seconds < longest_pause_s)
        seconds *= 2;
    return std::min(seconds, longest_pause_s);
}

void reconnecting::next_try() {
    seconds_left = pause_before(++attempt);
    if (is_in_a_hurry())
        seconds_left = 1;
    timer = clock.repeating(second_ms, [this] { tick(); });
    on_waiting(seconds_left, attempt);
}

void reconnecting::tick() {
    if (--seconds_left > 0)
        return on_waiting(seconds_left, attempt);
    timer = clock.one_shot(is_in_a_hurry() ? short_try_ms : longest_try_ms,
                           [this] { next_try(); }); // first: a try may open the link at once
    on_trying(attempt);
}

void reconnecting::hurry() {
    hurried_until = clock.microseconds() + hurry_us;
    if (is_active() && seconds_left > 1)
        seconds_left = 1;
}

void reconnecting::stop() {
    timer.reset();
    attempt = 0;
}

} // namespace brivant
