#include "diagnostics/standard_report.h"

#include "diagnostics/permanent_codes.h"
#include "diagnostics/second_reading.h"
#include "diagnostics/second_status.h"
#include "operations/operation_code.h"
#include "toolkit/mac_toolies.h"

namespace brivant {

namespace {

using describer = std::function<QString(const QString&)>;

diagnostic_results as_standard(const diagnostic_results& results, const mac_toolies& toolies) {
    diagnostic_results read = results;
    read.readinessFlagsArray = read_status_again(results, toolies).standard.monitors;
    for (const part which : results.answers.keys())
        if (which != part::readiness && which != part::permanent)
            read.answers[which] = {facts(plain(second_reading(which, results, toolies).standard_rows()))};
    return read;
}

QString permanent_section(const permanent_codes& permanent, const describer& describe) {
    QString text = QStringLiteral("\n\n....... Permanent DTC Codes .......\n");
    for (const code_row& row : rows_of<code_row>(plain(permanent.rows)))
        text += QStringLiteral("%1 - %2\n").arg(row.code, describe(row.code));
    return permanent.words.isEmpty() ? text : text + permanent.words + u'\n';
}

// The readiness is read again by itself: see read_status_again.
QList<part> read_twice(int operation) {
    QList<part> parts = parts_behind(operation);
    parts.removeAll(part::readiness);
    return parts;
}

bool is_of_codes(int operation) {
    return operation == op_read_codes || operation == op_pending_freeze;
}

QString section(const char* title, const QStringList& lines) {
    return lines.isEmpty()
               ? QString()
               : QStringLiteral("\n\n....... %1 .......\n%2\n").arg(QLatin1String(title), lines.join(u'\n'));
}

QString not_answered(int operation, const diagnostic_results& results, const mac_toolies& toolies) {
    QStringList faults;
    if (const QString status = read_status_again(results, toolies).faults;
        is_of_codes(operation) && !status.isEmpty())
        faults += status;
    for (const part which : read_twice(operation))
        faults += second_reading(which, results, toolies).faults();
    return section("Not answered", faults);
}

// The codes as a whole, of other lists the rows that differ.
QStringList lines_of(part which, const second_reading& reading, const describer& describe) {
    static const QMap<part, QString> names = {{part::codes, QStringLiteral("Confirmed: ")},
                                              {part::pending, QStringLiteral("Pending: ")}};
    QStringList lines;
    for (const noted_row& row : reading.shows_standard() ? reading.own_rows() : reading.standard_rows()) {
        if (const auto* code = std::get_if<code_row>(&row.row))
            lines += names.value(which) + QStringLiteral("%1 - %2").arg(code->code, describe(code->code));
        else if (row.weighs || names.contains(which))
            lines += names.value(which) + row_text(which, row.row);
    }
    return lines;
}

QString other_reading(int operation, const diagnostic_results& results, const mac_toolies& toolies,
                      const describer& describe) {
    QStringList lines;
    const second_status status = read_status_again(results, toolies);
    if (is_of_codes(operation) && status.weighs)
        lines += status.line;
    for (const part which : read_twice(operation))
        if (const second_reading reading(which, results, toolies); reading.weighs())
            lines += lines_of(which, reading, describe);
    return section(
        toolies.standard_reading() ? "In the program's own reading" : "In these replies by SAE J1979", lines);
}

} // namespace

diagnostic_report report_by_standard(int operation, const diagnostic_results& results,
                                     const mac_toolies& toolies, const QString& today,
                                     const describer& describe) {
    diagnostic_report report = work_out_text_4_log(operation, as_standard(results, toolies), today, describe)
                                   .value_or(diagnostic_report());
    if (report.text.isEmpty())
        return report;
    report.raw = work_out_text_4_log(operation, results, today, describe)->raw; // as they came
    report.text.insert(
        report.text.indexOf(u'\n') + 1,
        QStringLiteral("Standard reading: values and codes as SAE J1979 reads the replies.\n"));
    const permanent_codes permanent = read_permanent_codes(results, toolies);
    if (is_of_codes(operation) && permanent.was_read)
        report.text += permanent_section(permanent, describe);
    return report;
}

diagnostic_report report_to_show(int operation, const diagnostic_results& results, const mac_toolies& toolies,
                                 const QString& today, const describer& describe) {
    diagnostic_report report =
        toolies.standard_reading()
            ? report_by_standard(operation, results, toolies, today, describe)
            : work_out_text_4_log(operation, results, today, describe).value_or(diagnostic_report());
    if (!report.text.isEmpty())
        report.text +=
            not_answered(operation, results, toolies) + other_reading(operation, results, toolies, describe);
    return report;
}

diagnostic_report report_to_store(int operation, const diagnostic_results& results,
                                  const mac_toolies& toolies, const QString& today,
                                  const describer& describe) {
    diagnostic_report report =
        work_out_text_4_log(operation, results, today, describe).value_or(diagnostic_report());
    if (!report.text.isEmpty())
        report.text += not_answered(operation, results, toolies);
    return report;
}

} // namespace brivant
