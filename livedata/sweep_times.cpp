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

void sweep_times::sweep_complete(qsizetype values) {
    at[static_cast<size_t>(sweeps % kept)] = clock();
    values_of[static_cast<size_t>(sweeps % kept)] = values;
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

// From the first of the latest `known` sweeps to the last.
double sweep_times::seconds_of(qint64 known) const {
    const qint64 span =
        at[static_cast<size_t>((sweeps - 1) % kept)] - at[static_cast<size_t>((sweeps - known) % kept)];
    constexpr qint64 shortest = 1; // what the clock can tell
    return static_cast<double>(std::max(span, shortest)) / 1000;
}

qint64 sweep_times::telling() const {
    const qint64 known = std::min(sweeps - behind_gap, kept);
    if (known < 2)
        return 0;
    constexpr double overdue = 4;  // times as long as one takes
    constexpr double patience = 2; // seconds
    const double usual = seconds_of(known) / static_cast<double>(known - 1);
    const double waited = static_cast<double>(clock() - at[static_cast<size_t>((sweeps - 1) % kept)]) / 1000;
    return is_running && waited > std::max(patience, overdue * usual) ? 0 : known;
}

double sweep_times::sweeps_a_second() const {
    const qint64 known = telling();
    return known == 0 ? 0 : static_cast<double>(known - 1) / seconds_of(known);
}

double sweep_times::values_a_second() const {
    const qint64 known = telling();
    qsizetype values = 0;
    for (qint64 sweep = sweeps - known + 1; sweep < sweeps; ++sweep)
        values += values_of[static_cast<size_t>(sweep % kept)];
    return known == 0 ? 0 : static_cast<double>(values) / seconds_of(known);
}

} // namespace brivant
