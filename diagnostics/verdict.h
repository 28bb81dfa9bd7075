#pragma once

#include "diagnostics/code_list.h"
#include "diagnostics/second_status.h"

namespace brivant {

// What a reading of the codes comes to, as a person asks for it.
struct verdict {
    enum class mood { not_read, good, look_here, fault };
    mood is = mood::not_read;
    QString answer;   // "2 fault codes"
    QString more;     // "1 pending, 1 permanent"
    QString monitors; // "6 of 7 monitors ready"; "" while not known
    QString missing;  // "Inspection: not yet, Evaporative system"; "" when nothing is
    // Of the car, each "" until it was read.
    QString vin;
    QString voltage;
};
// `vehicle`: the rows of the vehicle's reading that is shown.
verdict judge(const diagnostic_results& results, const code_list& codes, const second_status& status,
              bool permanent_were_read, const QList<noted_row>& vehicle);

} // namespace brivant
