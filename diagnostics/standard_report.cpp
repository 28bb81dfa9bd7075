#include "diagnostics/standard_report.h"

#include "diagnostics/permanent_codes.h"
#include "diagnostics/second_reading.h"
#include "diagnostics/second_status.h"
#include "operations/operation_code.h"

namespace brivant {

namespace {

diagnostic_results as_standard(const diagnostic_results& results, const mac_toolies& toolies) {
    diagnostic_results read = results;
    read.readinessFlagsArray = read_status_again(results, toolies).shown().monitors;
    for (const part which : results.answers.keys())
        if (which != part::readiness && which != part::permanent)
            read.answers[which] = {facts(plain(second_reading(which, results, toolies).standard_rows()))};
    return read;
}

QString permanent_section(const permanent_codes& permanent,
                          const std::function<QString(const QString&)>& describe) {
    QString text = QStringLiteral("\n\n....... Permanent DTC Codes .......\n");
    for (const code_row& row : rows_of<code_row>(plain(permanent.rows)))
        text += QStringLiteral("%1 - %2\n").arg(row.code, describe(row.code));
    return permanent.words.isEmpty() ? text : text + permanent.words + u'\n';
}

} // namespace

diagnostic_report standard_report(int operation, const diagnostic_results& results,
                                  const mac_toolies& toolies, const QString& today,
                                  const std::function<QString(const QString&)>& describe) {
    diagnostic_report report = work_out_text_4_log(operation, as_standard(results, toolies), today, describe)
                                   .value_or(diagnostic_report());
    if (report.text.isEmpty())
        return report;
    report.raw = work_out_text_4_log(operation, results, today, describe)->raw; // as they came
    report.text.insert(
        report.text.indexOf(u'\n') + 1,
        QStringLiteral("Standard reading: values and codes as SAE J1979 reads the replies.\n"));
    const permanent_codes permanent = read_permanent_codes(results, toolies);
    const bool is_of_codes = operation == op_read_codes || operation == op_pending_freeze;
    if (is_of_codes && permanent.was_read)
        report.text += permanent_section(permanent, describe);
    return report;
}

} // namespace brivant
