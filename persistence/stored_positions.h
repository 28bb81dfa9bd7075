#pragma once

#include "formats/run_values.h"
#include "persistence/database.h"

namespace brivant {

// Where a stored run was, a sweep at a time. Logs of older programs, and lines without a fix, have nothing.

// What a line has in DATA2: latitude, longitude, altitude and speed, "52.5200080,13.4049540,34.5,16.60"; ""
// without a position.
QString position_text(const std::optional<geo_position>& where);
// False when it could not be stored.
bool store_position(database& db, int log_id, int line_no, const geo_position& where);

// Whether the run has any, and others may know: not while anonymity is on.
bool shows_positions(database& db, int log_id);
// The rows of timed_chunks_statement(), with the position behind them.
QString placed_chunks_statement(int log_id);
// That position; nothing where there is none, or it is damaged.
std::optional<geo_position> position_in(const QStringList& row);

} // namespace brivant
