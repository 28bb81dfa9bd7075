#include "diagnostics/stored_result.h"

#include "diagnostics/standard_report.h"
#include "obd/trouble_codes.h"
#include "operations/operation_code.h"
#include "toolkit/mac_toolies.h"

namespace brivant {

namespace {

// The operation whose report is stored with this title, none for a log of another kind.
std::optional<int> operation_behind(const QString& log_type) {
    for (const int operation_code : {op_read_codes, op_vehicle_info, op_mode6, op_misfire, op_o2_tests})
        if (work_out_text_4_log(operation_code, {}, {}, [](const QString&) { return QString(); })->title ==
            log_type)
            return operation_code;
    return std::nullopt;
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
    const auto operation_code = operation_behind(log_type);
    if (!operation_code || replies.isEmpty())
        return {};
    diagnostic_results results;
    QStringList read; // several ECUs are asked alike, and each reply holds them all
    for (const stored_reply& one : replies) {
        const QString identity = one.request + u'|' + one.what_came.text;
        if (read.contains(identity))
            continue;
        read += identity;
        results.answers[part_of(*operation_code, one.request)] += {one.request, reply(one.what_came), {}, {}};
    }
    const auto codes = toolies.lists()
                           .get_dictionary_from_resource(QStringLiteral("P0_Codes"), QStringLiteral("txt"),
                                                         QStringLiteral(" "))
                           .value_or(QMap<QString, QString>());
    return report_by_standard(*operation_code, results, toolies, QStringLiteral("-"),
                              [&codes](const QString& code) { return look_upCode(code, codes); })
        .text;
}

} // namespace brivant
