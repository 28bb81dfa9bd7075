#pragma once

#include "diagnostics/report.h"

namespace brivant {

class mac_toolies;

// The report of an operation as it is shown: by the reading that the person chose (by SAE J1979 with a line
// that says so, and the permanent codes where they were read), with what was not answered, and with what the
// other reading says where a person would act on it. Empty for an operation that leaves none. The arguments
// are those of work_out_text_4_log.
diagnostic_report report_to_show(int operation, const diagnostic_results& results, const mac_toolies& toolies,
                                 const QString& today,
                                 const std::function<QString(const QString&)>& describe);

// The report by SAE J1979, without what was not answered.
diagnostic_report report_by_standard(int operation, const diagnostic_results& results,
                                     const mac_toolies& toolies, const QString& today,
                                     const std::function<QString(const QString&)>& describe);

// The report as it is stored: the program's own reading, with what was not answered.
diagnostic_report report_to_store(int operation, const diagnostic_results& results,
                                  const mac_toolies& toolies, const QString& today,
                                  const std::function<QString(const QString&)>& describe);

} // namespace brivant
