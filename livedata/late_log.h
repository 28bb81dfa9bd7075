#pragma once

#include "livedata/live_results.h"
#include "livedata/run_log.h"

namespace brivant {

// Stores a run that has ended and is in memory alone, as far as it is still there, a slice of its sweeps at a
// time. Letting it go leaves a log of those stored so far.
class late_log {
public:
    // Everything outlives it. `storing`: its row was created.
    late_log(run_log& its_storing, const live_results& its_results);
    ~late_log() { storing.end(); }
    Q_DISABLE_COPY_MOVE(late_log)

    // True while there is more to store. False at the end, and when it failed: see run_log::problem().
    bool step();
    int percent() const { return rows == 0 ? 100 : static_cast<int>(100 * next / rows); }

private:
    run_log::kept_line line_of(qsizetype row) const;

    run_log& storing;
    const live_results& results;
    const qsizetype rows; // without the one that was never completed
    qsizetype next = 0;
};

} // namespace brivant
