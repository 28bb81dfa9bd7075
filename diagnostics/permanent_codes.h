#pragma once

#include "diagnostics/second_reading.h"

namespace brivant {

class mac_toolies;

// What the replies to work_out_permanent say by SAE J1979. Permanent codes stay until the car itself has seen
// the fault gone; clearing does not remove them.
struct permanent_codes {
    bool was_read = false;
    QList<noted_row> rows;            // of the kind code_row
    QString words;                    // why there are no rows, or may be more; "" when there is no doubt
    QList<readiness_row> drive_cycle; // of the engine; "N/A" is not enabled in this drive cycle
    QString drive_cycle_words;        // why there are none

    // One line about the codes.
    QString summary() const;
};
permanent_codes read_permanent_codes(const diagnostic_results& results, const mac_toolies& toolies);

inline const QString permanent_request = QStringLiteral("0A");
inline const QString drive_cycle_request = QStringLiteral("0141");
inline const QString drive_cycle_group = QStringLiteral("This drive cycle");

} // namespace brivant
