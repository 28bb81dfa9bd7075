#pragma once

#include "diagnostics/report.h"

namespace brivant {

class mac_toolies;

// The report of an operation from what its replies hold by SAE J1979, with a line that says so and, for the
// trouble codes, the permanent ones where they were read. Empty for an operation that leaves none. The other
// arguments are those of work_out_text_4_log.
diagnostic_report standard_report(int operation, const diagnostic_results& results,
                                  const mac_toolies& toolies, const QString& today,
                                  const std::function<QString(const QString&)>& describe);

} // namespace brivant
