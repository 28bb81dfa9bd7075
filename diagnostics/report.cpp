#include "diagnostics/report.h"

#include "base/string_table.h"
#include "diagnostics/mode6_records.h"
#include "operations/operation_code.h"

#include <QRegularExpression>
#include <algorithm>

namespace brivant {

namespace {

using describer = std::function<QString(const QString&)>;

QString heading(const char* what, const QString& today) {
    return QStringLiteral("------%1:%2------------- \n").arg(QLatin1String(what), today);
}

// The row's last field in the second place, all before it in the first.
QString vehicle_info_rows(const diagnostic_results& results) {
    QString text;
    for (const QString& row : row_texts(part::vehicle, results.rows(part::vehicle))) {
        const qsizetype last = row.lastIndexOf(u'|');
        const QString first = last < 0 ? row : row.first(last).replace(u'|', u' ');
        text += fill(QStringLiteral("%@  %@\n"), {first, last < 0 ? QString() : row.sliced(last + 1)});
    }
    return text;
}

QString test_rows(const diagnostic_results& results, part which) {
    QString text;
    for (const test_row& row : rows_of<test_row>(results.rows(which)))
        text += fill(QStringLiteral("%@ \n \t... %@ \n\t %@ \n\n"), {row.title(), row.subject(), row.text()});
    return text;
}

QString confirmed_codes(const diagnostic_results& results, const describer& describe) {
    QString text;
    QStringList codes;
    for (const code_row& row : rows_of<code_row>(results.rows(part::codes))) {
        text += fill(QStringLiteral("%@ - %@\n"), {row.code, describe(row.code)});
        codes += row.code;
    }
    const QList<result_row> rows = results.rows(part::codes);
    QString gathered = codes.join(QStringLiteral(", "));
    if (rows.isEmpty())
        gathered = QStringLiteral("Not read"); // only the pending codes were: nothing is known of these
    else if (codes.isEmpty())
        gathered = row_text(part::codes, rows.first());
    return text + fill(QStringLiteral("[%d]  %@"), {QString::number(codes.size()), gathered});
}

QString readiness_flags(const QList<readiness_row>& rows) {
    QString text;
    for (const readiness_row& row : rows) {
        QString label = row.label;
        text += row.state.leftJustified(4) + QStringLiteral("  ") + label.remove(u'\r').leftJustified(20) +
                u' ' + row.group + u'\n';
    }
    return text + readiness_summary(rows);
}

QString trouble_codes(const diagnostic_results& results, const describer& describe) {
    QString text = confirmed_codes(results, describe);
    text += QStringLiteral("\n\n....... Pending DTC Codes .......\n");
    QStringList pending;
    for (const code_row& row : rows_of<code_row>(results.rows(part::pending)))
        pending += fill(QStringLiteral("%@ - %@"), {row.code, describe(row.code)});
    for (const words_row& row : rows_of<words_row>(results.rows(part::pending)))
        pending += row.text;
    if (!results.pending_received)
        pending += QStringLiteral("Failed to receive the Pending error codes");
    text += pending.join(u'\n');
    text += QStringLiteral("\n\n....... Freeze Data .......\n");
    for (const QString& row : row_texts(part::freeze, results.rows(part::freeze)))
        text += fill(QStringLiteral("%@ \n    "), {row});
    text += QStringLiteral("\n\n....... Readiness Flags .......\nFlag   Description               Group\n");
    text += readiness_flags(results.readinessFlagsArray);
    text += QStringLiteral("\n\n....... Extra Info......\n");
    for (const QString& row : results.xtraInfoArray)
        text += fill(QStringLiteral("%@\n"), {row});
    return text;
}

} // namespace

std::optional<diagnostic_report> work_out_text_4_log(int operation, const diagnostic_results& results,
                                                     const QString& today, const describer& describe) {
    switch (operation) {
    case op_read_codes:
    case op_pending_freeze: // its results are sections of the same report
        return diagnostic_report{"DTC",
                                 "Codes and flags",
                                 heading("DTC Codes read", today) + trouble_codes(results, describe),
                                 {}};
    case op_vehicle_info:
        return diagnostic_report{
            "Veh_info", "more parms", heading("Veh Info read", today) + vehicle_info_rows(results), {}};
    case op_mode6:
        return diagnostic_report{"Mode6",
                                 "continous/non-continous test results",
                                 heading("Mode6 read", today) + test_rows(results, part::mode6),
                                 {}};
    case op_misfire:
        return diagnostic_report{"Misfire", "EWMA is an average over driving cycles",
                                 heading("Misfire read", today) + test_rows(results, part::misfire),
                                 raw_records(results, part::misfire)};
    case op_o2_tests:
        return diagnostic_report{"O2 Test", "Test results for O2 monitoring ",
                                 heading("O2 test results read", today) + test_rows(results, part::o2),
                                 raw_records(results, part::o2)};
    default: return std::nullopt;
    }
}

QList<part> parts_behind(int operation) {
    switch (operation) {
    case op_read_codes:
    case op_pending_freeze: return {part::readiness, part::codes, part::pending, part::freeze};
    case op_vehicle_info: return {part::vehicle};
    case op_mode6: return {part::mode6};
    case op_misfire: return {part::misfire};
    case op_o2_tests: return {part::o2};
    default: return {};
    }
}

QString without_markup(QString report) {
    static const QRegularExpression tags(QStringLiteral("</?font[^>]*>"));
    return report.remove(tags);
}

} // namespace brivant
