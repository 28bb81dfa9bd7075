#include "formats/speed_times.h"

#include <cmath>
#include <utility>

namespace brivant {

speed_times::moment speed_times::crossing(const sample& before, const sample& behind, double speed) {
    const double interval = behind.ms - before.ms;
    const double part = speed > 0 ? (speed - before.speed) / (behind.speed - before.speed) : 0.5;
    return {before.ms + part * interval, interval / 2};
}

void speed_times::add(double ms, double speed, double longest_gap_ms) {
    const sample now{ms, speed};
    const auto before = std::exchange(latest, now);
    if (!before || ms - before->ms > longest_gap_ms || is_below_start(speed)) {
        begun.reset();
        return;
    }
    if (is_below_start(before->speed))
        begun = crossing(*before, now, from);
    if (!begun || before->speed >= to || speed < to)
        return;
    const moment reached = crossing(*before, now, to);
    const time taken{(reached.ms - begun->ms) / 1000,
                     std::hypot(begun->uncertainty, reached.uncertainty) / 1000, begun->ms};
    if (!shortest || taken.seconds < shortest->seconds)
        shortest = taken;
    ++counted;
    begun.reset();
}

} // namespace brivant
