#include "diagnostics/stored_result.h"

#include "diagnostics/standard_report.h"
#include "obd/trouble_codes.h"
#include "operations/operation_code.h"
#include "toolkit/mac_toolies.h"

namespace brivant {

namespace {

// The parts whose replies make a report.
QList<part> parts_behind(int operation_code) {
    switch (operation_code) {
    case op_read_codes:
    case op_pending_freeze: return {part::readiness, part::codes, part::pending, part::freeze};
    case op_vehicle_info: return {part::vehicle};
    case op_mode6: return {part::mode6};
    case op_misfire: return {part::misfire};
    case op_o2_tests: return {part::o2};
    default: return {};
    }
}

const QMap<QString, operation>& reports() {
    static const QMap<QString, operation> all = {{QStringLiteral("DTC"), op_read_codes},
                                                 {QStringLiteral("Veh_info"), op_vehicle_info},
                                                 {QStringLiteral("Mode6"), op_mode6},
                                                 {QStringLiteral("Misfire"), op_misfire},
                                                 {QStringLiteral("O2 Test"), op_o2_tests}};
    return all;
}

part part_of(int operation_code, const QString& request) {
    if (operation_code != op_read_codes)
        return parts_behind(operation_code).first();
    static const QMap<QString, part> by_service = {{QStringLiteral("01"), part::readiness},
                                                   {QStringLiteral("07"), part::pending},
                                                   {QStringLiteral("02"), part::freeze}};
    return by_service.value(request.left(2), part::codes);
}

} // namespace

QList<stored_reply> replies_behind(int operation_code, const diagnostic_results& results) {
    QList<stored_reply> replies;
    for (const part which : parts_behind(operation_code))
        for (const answer& one : results.answers.value(which))
            if (!one.request.isEmpty())
                replies += {one.request, one.what_came.raw(), one.milliseconds};
    return replies;
}

QString standard_text(const QString& log_type, const QList<stored_reply>& replies,
                      const mac_toolies& toolies) {
    if (!reports().contains(log_type) || replies.isEmpty())
        return {};
    const int operation_code = reports().value(log_type);
    diagnostic_results results;
    QStringList read; // several ECUs are asked alike, and each reply holds them all
    for (const stored_reply& one : replies) {
        const QString identity = one.request + u'|' + one.what_came.text;
        if (read.contains(identity))
            continue;
        read += identity;
        results.answers[part_of(operation_code, one.request)] += {one.request, reply(one.what_came), {}, {}};
    }
    const auto codes = toolies.lists()
                           .get_dictionary_from_resource(QStringLiteral("P0_Codes"), QStringLiteral("txt"),
                                                         QStringLiteral(" "))
                           .value_or(QMap<QString, QString>());
    return report_by_standard(operation_code, results, toolies, QStringLiteral("-"),
                              [&codes](const QString& code) { return look_upCode(code, codes); })
        .text;
}

} // namespace brivant
