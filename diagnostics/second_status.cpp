#include "diagnostics/second_status.h"

#include "base/string_table.h"
#include "diagnostics/answer_faults.h"
#include "obd/standard_reading/ecu_answers.h"
#include "toolkit/mac_toolies.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr int status_pid = 0x01;
constexpr qsizetype continuous_monitors = 3;
constexpr qsizetype most_named = 3;

// What each ECU answers to the PID.
template <class function>
void for_each_status(const answer& kept, int pid, function take) {
    constexpr int current_data = 0x01;
    constexpr qsizetype data_at = 2; // behind service and PID
    for (const ecu_answer& answer : answers_to(current_data, kept.what_came.raw()))
        for (const QByteArray& data : answer.messages)
            if (data.size() > data_at && data.at(1) == static_cast<char>(pid))
                take(answer.ecu, read_monitor_status(data.mid(data_at)));
}

// The monitors under the program's names, where it has them: a row of its own for each but the reserved ones.
QList<readiness_row> rows_of(const monitor_status& status, QList<readiness_row> own) {
    own.removeIf([](const readiness_row& row) { return row.label.startsWith(QLatin1String("Reserved")); });
    const bool same_monitors = own.size() == status.monitors.size();
    QList<readiness_row> rows;
    for (qsizetype i = 0; i < status.monitors.size(); ++i) {
        const monitor& one = status.monitors.at(i);
        const QString state = one.complete ? QStringLiteral("OK") : QStringLiteral("X");
        const QString group =
            i < continuous_monitors ? QStringLiteral("Continous") : QStringLiteral("Non-Continous");
        rows += {one.supported ? state : not_available, same_monitors ? own.at(i).label : one.name, group};
    }
    return rows;
}

car_status standard_status(const answer& kept, const QList<readiness_row>& own, const mac_toolies& toolies) {
    car_status status;
    for_each_status(kept, status_pid, [&](const QString&, const monitor_status& one) {
        status.is_known |= !one.monitors.isEmpty();
        status.mil |= one.mil;
        status.codes += one.codes;
    });
    status.monitors = rows_of(engine_monitors(kept, status_pid, toolies).status, own);
    return status;
}

QString state_in_words(const QString& state) {
    return state == QLatin1String("OK")  ? QStringLiteral("complete")
           : state == QLatin1String("X") ? QStringLiteral("not complete")
                                         : QStringLiteral("not supported");
}

// The monitors of one reading whose states the other one tells otherwise, or lacks.
QList<readiness_row> monitors_apart(const QList<readiness_row>& told, const QList<readiness_row>& others) {
    QList<readiness_row> apart;
    for (const readiness_row& row : told) {
        const bool is_told = std::any_of(others.begin(), others.end(), [&](const readiness_row& other) {
            return other.label == row.label && other.state == row.state;
        });
        const bool is_there = row.state != not_available;
        const bool is_named = std::any_of(others.begin(), others.end(), [&](const readiness_row& other) {
            return other.label == row.label;
        });
        if (!is_told && (is_there || is_named))
            apart += row;
    }
    return apart;
}

QString in_words(const car_status& told, const car_status& other, const QList<readiness_row>& apart) {
    if (!told.is_known)
        return QStringLiteral("nothing of the MIL, the number of codes and the readiness");
    QStringList words;
    if (told.mil != other.mil || told.codes != other.codes || !other.is_known)
        words += QStringLiteral("MIL %1, %2 %3")
                     .arg(told.mil ? QStringLiteral("ON") : QStringLiteral("OFF"))
                     .arg(told.codes)
                     .arg(told.codes == 1 ? QStringLiteral("code") : QStringLiteral("codes"));
    for (const readiness_row& row : apart.first(std::min(apart.size(), most_named)))
        words += QStringLiteral("%1 %2").arg(QString(row.label).remove(u'\r').trimmed(),
                                             state_in_words(row.state));
    if (apart.size() > most_named)
        words += QStringLiteral("%1 more monitors").arg(apart.size() - most_named);
    return words.isEmpty() ? QStringLiteral("the same but for the monitors")
                           : words.join(QLatin1String(", "));
}

// What the status as a whole does not say.
QString status_faults(const answer& kept, const car_status& status, const mac_toolies& toolies) {
    const QStringList faults = faults_of(kept);
    if (!status.is_known)
        return QStringLiteral("No ECU has told its lamp, codes and monitors%1.")
            .arg(faults.isEmpty() ? QString()
                                  : QStringLiteral(" (%1)").arg(faults.join(QStringLiteral("; "))));
    if (faults.isEmpty())
        return {};
    const QString missing = QStringLiteral("An answer is missing in lamp, codes and monitors (%1).")
                                .arg(faults.join(QStringLiteral("; ")));
    const QString source = engine_monitors(kept, status_pid, toolies).ecu;
    return source.isEmpty() || toolies.isThisEngineHeader(source)
               ? missing
               : missing + QStringLiteral(" The monitors are those of %1, not of the engine.").arg(source);
}

} // namespace

told_monitors engine_monitors(const answer& kept, int pid, const mac_toolies& toolies) {
    told_monitors told;
    for_each_status(kept, pid, [&](const QString& ecu, const monitor_status& one) {
        if (told.status.monitors.isEmpty() || toolies.isThisEngineHeader(ecu))
            told = {ecu, one};
    });
    return told;
}

second_status read_status_again(const diagnostic_results& results, const mac_toolies& toolies) {
    second_status status;
    status.standard_shown = toolies.standard_reading();
    status.own = {true, results.milLamp, results.no_of_codes, results.readinessFlagsArray};
    const QList<answer> kept = results.answers.value(part::readiness);
    status.was_read = !kept.isEmpty();
    if (!status.was_read)
        return status;
    status.standard = standard_status(kept.first(), status.own.monitors, toolies);
    const QList<readiness_row> own_apart = monitors_apart(status.own.monitors, status.standard.monitors);
    const QList<readiness_row> standard_apart = monitors_apart(status.standard.monitors, status.own.monitors);
    status.own.is_known = status.standard.is_known;
    status.faults = status_faults(kept.first(), status.standard, toolies);
    status.weighs = status.own.mil != status.standard.mil || status.own.codes != status.standard.codes;
    status.differs = status.own.mil != status.standard.mil || status.own.codes != status.standard.codes ||
                     !own_apart.isEmpty() || !standard_apart.isEmpty();
    if (status.differs)
        status.line = status.standard_shown
                          ? QStringLiteral("The program's own reading of the monitor status: ") +
                                in_words(status.own, status.standard, own_apart)
                          : QStringLiteral("By SAE J1979 the monitor status says: ") +
                                in_words(status.standard, status.own, standard_apart);
    return status;
}

} // namespace brivant
