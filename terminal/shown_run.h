#pragma once

#include "persistence/stored_logs.h"
#include "toolkit/mac_toolies.h"

namespace brivant {

// A stored sampling run on standard output, a line at a time: it may be longer than the memory.

// Each is false when the database cannot be read, or the output not written.

// As comma-separated values in the reading in force, and its marks below.
bool print_run(mac_toolies& toolies, const log_header& log);
// As further members of a JSON object, in both readings.
bool print_run_as_json(mac_toolies& toolies, const log_header& log);

// Each line of a log. `take` gives false where it is enough.
bool each_chunk(database& db, int log_id, const std::function<bool(const QStringList& row)>& take);

} // namespace brivant
