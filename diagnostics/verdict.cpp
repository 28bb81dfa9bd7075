#include "diagnostics/verdict.h"

#include <algorithm>

namespace brivant {

namespace {

QString counted(qsizetype count, const char* what, const char* several) {
    return QStringLiteral("%1 %2").arg(count).arg(QLatin1String(count == 1 ? what : several));
}

void answer_with(verdict& told, qsizetype confirmed, bool lamp_is_on, qsizetype pending) {
    using mood = verdict::mood;
    if (confirmed > 0) {
        told.is = mood::fault;
        told.answer = counted(confirmed, "fault code", "fault codes");
    } else if (lamp_is_on) {
        told.is = mood::look_here;
        told.answer = QStringLiteral("No fault codes, but the lamp is on");
    } else if (pending > 0) {
        told.is = mood::look_here;
        told.answer = QStringLiteral("No confirmed codes");
    } else {
        told.is = mood::good;
        told.answer = QStringLiteral("No fault codes");
    }
}

QString other_kinds(const code_list& codes, bool pending_were_read, bool permanent_were_read) {
    QStringList read;
    QStringList not_read;
    const auto tell = [&](bool was_read, bool listed_code::*kind, const QString& word) {
        if (was_read)
            read += QStringLiteral("%1 %2").arg(codes.count(kind)).arg(word);
        else
            not_read += word;
    };
    tell(pending_were_read, &listed_code::pending, QStringLiteral("pending"));
    tell(permanent_were_read, &listed_code::permanent, QStringLiteral("permanent"));
    if (!not_read.isEmpty())
        read += not_read.join(QStringLiteral(" and ")) + QStringLiteral(" not read");
    return read.join(QStringLiteral(", "));
}

void tell_the_monitors(verdict& told, const QList<readiness_row>& monitors) {
    QStringList missing;
    qsizetype ready = 0;
    for (const readiness_row& row : monitors) {
        ready += row.state == QLatin1String("OK") ? 1 : 0;
        if (row.state == QLatin1String("X"))
            missing += row.label.trimmed();
    }
    if (monitors.isEmpty())
        return;
    told.monitors =
        QStringLiteral("%1 of %2").arg(ready).arg(ready + missing.size()) + QStringLiteral(" monitors ready");
    if (!missing.isEmpty())
        told.missing = QStringLiteral("Inspection: not yet, ") + missing.join(QStringLiteral(", "));
}

} // namespace

verdict judge(const diagnostic_results& results, const code_list& codes, const second_status& status,
              bool permanent_were_read, const QList<noted_row>& vehicle) {
    verdict told;
    const bool pending_were_read = results.answers.contains(part::pending) && results.pending_received;
    const car_status& now = status.shown();
    const qsizetype announced = now.is_known ? now.codes : 0;
    if (!results.has_rows(part::codes))
        told.answer = QStringLiteral("Codes not read yet");
    else if (codes.count(&listed_code::confirmed) == 0 && !codes.doubt().isEmpty()) {
        told.is = verdict::mood::look_here;
        told.answer = QStringLiteral("Codes not read completely");
    } else {
        answer_with(told, std::max(codes.count(&listed_code::confirmed), announced), now.is_known && now.mil,
                    codes.count(&listed_code::pending));
    }
    if (told.is != verdict::mood::not_read || pending_were_read || permanent_were_read)
        told.more = other_kinds(codes, pending_were_read, permanent_were_read);
    tell_the_monitors(told, now.monitors);
    for (const value_row& row : rows_of<value_row>(plain(vehicle))) {
        if (row.label == QLatin1String("VIN"))
            told.vin = row.value;
        if (row.label == QLatin1String("Voltage"))
            told.voltage = row.value;
    }
    return told;
}

} // namespace brivant
