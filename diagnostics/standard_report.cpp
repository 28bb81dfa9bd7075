#include "diagnostics/standard_report.h"

#include "diagnostics/permanent_codes.h"
#include "diagnostics/second_reading.h"
#include "diagnostics/second_status.h"
#include "operations/operation_code.h"

namespace {

diagnostic_results as_standard(const diagnostic_results& results, const mac_toolies& toolies) {
    diagnostic_results read = results;
    const auto rows = [&](result_list list) {
        return second_reading(list, results, toolies).standard_rows();
    };
    read.readinessFlagsArray = read_status_again(results, toolies).shown().monitors;
    read.codesReadArray = rows(result_list::codes);
    read.pendingArray = rows(result_list::pending);
    read.freezeArray = rows(result_list::freeze);
    read.vehInfoArray = rows(result_list::vehicle);
    read.mode6Array = rows(result_list::mode6);
    read.misfireArray = rows(result_list::misfire);
    read.o2XtraArray = rows(result_list::o2);
    return read;
}

QString permanent_section(const permanent_codes& permanent,
                          const std::function<QString(const QString&)>& describe) {
    QString text = QStringLiteral("\n\n....... Permanent DTC Codes .......\n");
    for (const QString& row : permanent.rows) {
        const QString code = row.section(u'|', 0, 0);
        text += QStringLiteral("%1 - %2\n").arg(code, describe(code));
    }
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
    report.text.insert(
        report.text.indexOf(u'\n') + 1,
        QStringLiteral("Standard reading: values and codes as SAE J1979 reads the replies.\n"));
    const permanent_codes permanent = read_permanent_codes(results, toolies);
    const bool is_of_codes = operation == op_read_codes || operation == op_pending_freeze;
    if (is_of_codes && permanent.was_read)
        report.text += permanent_section(permanent, describe);
    return report;
}
