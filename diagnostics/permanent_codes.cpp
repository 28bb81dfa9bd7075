#include "diagnostics/permanent_codes.h"

#include "diagnostics/second_status.h"
#include "obd/standard_reading/codes_and_texts.h"
#include "toolkit/mac_toolies.h"

#include <algorithm>

namespace brivant {

namespace {

void read_codes(const answer& kept, permanent_codes& result) {
    QStringList faults;
    bool somebody_answered = false;
    for (const ecu_codes& ecu : read_trouble_codes(0x0A, kept.what_came.raw())) {
        somebody_answered |= ecu.fault.isEmpty();
        if (!ecu.fault.isEmpty())
            faults += ecu.ecu.isEmpty() ? ecu.fault : ecu.ecu + QStringLiteral(": ") + ecu.fault;
        for (const QString& code : ecu.codes)
            result.rows += {code_row{code, ecu.ecu}, {}};
    }
    if (result.rows.isEmpty())
        result.words = somebody_answered
                           ? QStringLiteral("The car holds no permanent codes.")
                           : QStringLiteral("This car does not tell permanent codes: it does not answer "
                                            "service 0A, which came with cars from about 2010 on.");
    if (!faults.isEmpty() && (somebody_answered || !result.rows.isEmpty()))
        result.words += (result.words.isEmpty() ? QString() : QStringLiteral(" ")) +
                        QStringLiteral("Not all ECUs answered (%1).").arg(faults.join(QStringLiteral(", ")));
}

void read_drive_cycle(const answer& kept, const mac_toolies& toolies, permanent_codes& result) {
    constexpr int drive_cycle_pid = 0x41;
    for (const monitor& m : engine_monitors(kept, drive_cycle_pid, toolies).status.monitors) {
        const QString state = m.complete ? QStringLiteral("OK") : QStringLiteral("X");
        result.drive_cycle += {m.supported ? state : not_available, m.name, drive_cycle_group};
    }
    if (result.drive_cycle.isEmpty())
        result.drive_cycle_words =
            QStringLiteral("This car does not tell what it has checked in this drive cycle.");
}

} // namespace

QString permanent_codes::summary() const {
    QStringList codes;
    for (const code_row& row : rows_of<code_row>(plain(rows)))
        codes += row.code;
    const QString listed =
        codes.isEmpty() ? QString() : QStringLiteral("Permanent codes: ") + codes.join(QStringLiteral(", "));
    return words.isEmpty() || listed.isEmpty() ? listed + words : listed + QStringLiteral(". ") + words;
}

permanent_codes read_permanent_codes(const diagnostic_results& results, const mac_toolies& toolies) {
    permanent_codes result;
    for (const answer& kept : results.answers.value(part::permanent)) {
        result.was_read = true;
        if (kept.request == permanent_request)
            read_codes(kept, result);
        else
            read_drive_cycle(kept, toolies, result);
    }
    return result;
}

} // namespace brivant
