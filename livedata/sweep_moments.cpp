#include "livedata/sweep_moments.h"

namespace brivant {

void sweep_moments::run_begins(qint64 now_us, qint64 utc_ms) {
    if (started_utc >= 0)
        return;
    begun_us = now_us;
    started_utc = utc_ms;
}

void sweep_moments::asks(qint64 now_us) {
    if (sweep_us < 0)
        sweep_us = now_us;
}

void sweep_moments::came(int column, int columns, qint64 moment_us) {
    offsets.resize(columns, qQNaN());
    if (column >= 0 && column < columns && sweep_us >= 0)
        offsets[column] = static_cast<double>(std::max<qint64>(0, moment_us - sweep_us)) / 1000;
}

sweep_moment sweep_moments::taken() {
    const qint64 began = std::exchange(sweep_us, -1);
    return {began < 0 ? 0 : milliseconds(began), std::exchange(offsets, {})};
}

} // namespace brivant
