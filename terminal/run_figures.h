#pragma once

#include "persistence/stored_logs.h"
#include "toolkit/mac_toolies.h"

namespace brivant {

// What a stored run says of the drive, on standard output. Why it cannot be read, "" when it was.
QString print_figures(mac_toolies& toolies, const log_header& log, bool as_json);

} // namespace brivant
