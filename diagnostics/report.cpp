#include "diagnostics/report.h"

#include "base/string_table.h"
#include "operations/operation_code.h"

#include <algorithm>

namespace {

using describer = std::function<QString(const QString&)>;

QString heading(const char* what, const QString& today) {
    return QStringLiteral("------%1:%2------------- \n").arg(QLatin1String(what), today);
}

// The row's last field in the second place, all before it in the first.
QString vehicle_info_rows(const QStringList& rows) {
    QString text;
    for (const QString& row : rows) {
        const qsizetype last = row.lastIndexOf(u'|');
        const QString first = last < 0 ? row : row.first(last).replace(u'|', u' ');
        text += fill(QStringLiteral("%@  %@\n"), {first, last < 0 ? QString() : row.sliced(last + 1)});
    }
    return text;
}

QString test_rows(const QStringList& rows) {
    QString text;
    for (const QString& row : rows) {
        const QStringList fields = row.split(u'|');
        text += fill(QStringLiteral("%@ \n \t... %@ \n\t %@ \n\n"),
                     {fields.value(1), fields.value(2), fields.value(3)});
    }
    return text;
}

QString confirmed_codes(const diagnostic_results& results, const describer& describe) {
    QString text;
    QString gathered;
    int count = 0;
    for (const QString& row : results.codesReadArray) {
        const QString code = row.section(u'|', 0, 0);
        if (!row.contains(u'|'))
            continue; // the row that says that there are none
        text += fill(QStringLiteral("%@ - %@\n"), {code, describe(code)});
        gathered = gathered.isEmpty() ? code : fill(QStringLiteral("%@, %@"), {gathered, code});
        ++count;
    }
    if (results.codesReadArray.isEmpty())
        gathered = QStringLiteral("Not read"); // only the pending codes were: nothing is known of these
    else if (count == 0)
        gathered = localised(QStringLiteral("NO_CODES"));
    return text + fill(QStringLiteral("[%d]  %@"), {QString::number(count), gathered});
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
    for (const QString& row : results.pendingArray) {
        const QString code = row.section(u'|', 0, 0);
        pending += fill(QStringLiteral("%@ - %@"), {code, describe(code)});
    }
    if (!results.pending_received)
        pending += QStringLiteral("Failed to receive the Pending error codes");
    text += pending.join(u'\n');
    text += QStringLiteral("\n\n....... Freeze Data .......\n");
    for (const QString& row : results.freezeArray)
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
    const QString raw = results.cur_CAN_raw_data.join(QString());
    switch (operation) {
    case op_read_codes:
    case op_pending_freeze: // its results are sections of the same report
        return diagnostic_report{"DTC",
                                 "Codes and flags",
                                 heading("DTC Codes read", today) + trouble_codes(results, describe),
                                 {}};
    case op_vehicle_info:
        return diagnostic_report{"Veh_info",
                                 "more parms",
                                 heading("Veh Info read", today) + vehicle_info_rows(results.vehInfoArray),
                                 {}};
    case op_mode6:
        return diagnostic_report{"Mode6",
                                 "continous/non-continous test results",
                                 heading("Mode6 read", today) + test_rows(results.mode6Array),
                                 {}};
    case op_misfire:
        return diagnostic_report{"Misfire", "EWMA is an average over driving cycles",
                                 heading("Misfire read", today) + test_rows(results.misfireArray), raw};
    case op_o2_tests:
        return diagnostic_report{"O2 Test", "Test results for O2 monitoring ",
                                 heading("O2 test results read", today) + test_rows(results.o2XtraArray),
                                 raw};
    default: return std::nullopt;
    }
}
