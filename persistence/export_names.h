#pragma once

#include "persistence/stored_logs.h"

namespace brivant {

// The name of the file that an export of the log writes: its time in the time zone of the system, and its
// kind. Of several logs of one name, the first has it as it is; the others are numbered, "NAME (2).csv". The
// number that a log was exported under stays its own, also when it is deleted: the file may be all that is
// left of it.
QString export_file_name(const log_header& log, bool as_txt);
QString numbered_export_file_name(database& db, const log_header& log, bool as_txt);
// The log is exported under its number. A database that cannot be written keeps none.
void keep_export_number(database& db, const log_header& log);

} // namespace brivant
