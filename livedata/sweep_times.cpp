#include "livedata/sweep_times.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace brivant {

namespace {

qint64 system_milliseconds() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

sweep_times::sweep_times(std::function<qint64()> now) : clock(now ? std::move(now) : system_milliseconds) {}

void sweep_times::clear() {
    begun = ended = sweeps = behind_gap = 0;
    is_running = false;
}

void sweep_times::run_begins() {
    if (!std::exchange(is_running, true))
        begun = clock();
}

void sweep_times::sweep_complete() {
    at[static_cast<size_t>(sweeps % kept)] = clock();
    ++sweeps;
}

void sweep_times::run_ends() {
    if (is_running)
        ended = clock();
    is_running = false;
}

qint64 sweep_times::duration_ms() const {
    return (is_running ? clock() : ended) - begun;
}

double sweep_times::sweeps_a_second() const {
    const qint64 known = std::min(sweeps - behind_gap, kept);
    if (known < 2)
        return 0;
    const qint64 span =
        at[static_cast<size_t>((sweeps - 1) % kept)] - at[static_cast<size_t>((sweeps - known) % kept)];
    constexpr qint64 shortest = 1; // what the clock can tell
    return static_cast<double>(known - 1) * 1000.0 / static_cast<double>(std::max(span, shortest));
}

} // namespace brivant
