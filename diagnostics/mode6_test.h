#pragma once

#include "diagnostics/diagnostic_talk.h"

namespace brivant {

// What differs between the operations over service 06.
struct mode6_test {
    QString starting;             // the first status
    QString toast;                // with a place for "Starting"
    QString querying;             // with places for index and count
    QString log_heading;          // with a place for the date
    part which{};                 // of the results
    bool retries_silence = false; // also when the adapter gave no answer, not only for no data
    int counts_from = 1;          // the index that is shown for the first identifier
    // The identifiers that the car has results for.
    talk (*find_identifiers)(diagnostic_talk& car, QStringList& identifiers) = nullptr;
};

// The talk that they share: one request an identifier; each test is a row.
talk work_mode6_test(diagnostic_talk& car, mode6_test test);
// A car without results of the kind: it is said, and the operation left.
[[noreturn]] void leave_without_results(diagnostic_talk& car, const QString& text, int sound);
// The same, unless the car does not answer at all.
talk nothing_there(diagnostic_talk& car, QString text, int sound);

// A range of monitors that one map of supported identifiers (SAE J1979) tells, CAN only.
struct monitor_range {
    QString support_request; // "06 A0"
    unsigned first = 0;      // the first identifier
    int count = 0;
    int map = 0;     // the index of the map that holds them
    QString no_data; // what is said when the car has no such map
};
talk find_monitors(diagnostic_talk& car, monitor_range monitors, QStringList& identifiers);

} // namespace brivant
