#pragma once

#include <QtGlobal>
#include <array>
#include <functional>

namespace brivant {

// When a run began to ask, and when each of its latest sweeps was complete.
class sweep_times {
public:
    // `now`: milliseconds of a clock that only goes forward; the system's by default.
    explicit sweep_times(std::function<qint64()> now = {});

    // A run is to begin.
    void clear();
    // It asks: the first time counts.
    void run_begins();
    void sweep_complete(qsizetype values);
    // No sweep comes for a while.
    void gap() { behind_gap = sweeps; }
    void run_ends();

    // Milliseconds from the start of the run until now, or until its end; 0 before the first run.
    qint64 duration_ms() const;
    // Over the latest sweeps behind a gap, at most 20 of them; 0 while there are fewer than two, and while
    // the next one is long overdue.
    double sweeps_a_second() const;
    // The values of these sweeps but the first.
    double values_a_second() const;

private:
    double seconds_of(qint64 known) const;
    // The latest ones that tell a rate, 0 while they tell none.
    qint64 telling() const;

    static constexpr qint64 kept = 20;

    std::function<qint64()> clock;
    qint64 begun = 0;
    qint64 ended = 0;
    bool is_running = false;
    qint64 sweeps = 0;
    qint64 behind_gap = 0;         // the first of them
    std::array<qint64, kept> at{}; // the latest ones, in turn
    std::array<qsizetype, kept> values_of{};
};

} // namespace brivant
