#pragma once

#include "persistence/database.h"

#include <optional>

namespace brivant {

// When the values of a stored run were true. Logs of older programs have no moments, only the seconds at
// which their lines were stored.

inline constexpr double longest_run_ms = 1e11;                 // three years
inline constexpr qint64 latest_start_ms = 253'370'764'800'000; // the year 9999

// One sweep, or the begin of a gap.
struct sweep_moment {
    double ms = 0; // since the run's start, when the sweep began to ask
    QList<double>
        offsets; // of each column from there, in milliseconds; NaN, or none, for a column without a value
};

// The header of the run has its start: milliseconds since 1970, UTC. False when that could not be stored.
bool store_run_start(database& db, int log_id, qint64 utc_ms);
bool store_moment(database& db, int log_id, int line_no, const sweep_moment& when);

// Nothing for a log that has none, or whose start is damaged.
std::optional<qint64> start_of_run(database& db, int log_id);
// The rows of a run for row_cursor: those of chunks_statement(), with the moment in two more columns behind
// them, "" where there is none.
inline constexpr int chunk_ms = 5, chunk_offsets = 6;
// `more_columns` (", p.SPEED") and `more_tables` (" LEFT JOIN ...") behind them.
QString timed_chunks_statement(int log_id, const QString& more_columns = {}, const QString& more_tables = {});
// That moment; nothing for one that is missing or damaged.
std::optional<sweep_moment> moment_in(const QString& ms, const QString& offsets);

} // namespace brivant
