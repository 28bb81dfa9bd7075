#pragma once

#include "persistence/stored_moments.h"

namespace brivant {

// When the values of the sweep under way were true, by a clock that only goes forward, from the first request
// of the run on. What is a value's moment: see exchange_moments.
class sweep_moments {
public:
    // A run is to begin.
    void clear() { *this = {}; }
    // It asks: the first time counts. `now_us`: microseconds of the clock; `utc_ms`: since 1970.
    void run_begins(qint64 now_us, qint64 utc_ms);
    // The sweep under way asks; the first time counts.
    void asks(qint64 now_us);
    // The value of this column came.
    void came(int column, int columns, qint64 moment_us);
    // The sweep is complete, or dropped: the next one begins.
    sweep_moment taken();

    // When the run began to ask, in milliseconds since 1970; -1 before.
    qint64 started_utc_ms() const { return started_utc; }
    // The begin of the sweep under way, since the run's.
    double sweep_ms() const { return sweep_us < 0 ? 0 : milliseconds(sweep_us); }
    double milliseconds(qint64 us) const { return static_cast<double>(us - begun_us) / 1000; }

private:
    qint64 begun_us = 0;
    qint64 started_utc = -1;
    qint64 sweep_us = -1; // its first request, -1 before
    QList<double> offsets;
};

} // namespace brivant
