#pragma once

#include "diagnostics/diagnostic_results.h"
#include "obd/standard_reading/pid_values.h"

namespace brivant {

class mac_toolies;

// The lamp, the announced codes and the monitors since the codes were cleared (service 01 PID 01), as the
// program reads them and by SAE J1979: there every ECU's codes count, whatever its lamp says.
struct car_status {
    bool is_known = false; // false: no ECU told
    bool mil = false;
    int codes = 0;
    QList<readiness_row> monitors; // of the engine
};
struct second_status {
    car_status own;
    car_status standard;
    bool was_read = false;
    bool standard_shown = false; // the preference
    bool differs = false;
    bool weighs = false; // in the lamp or the number of codes
    QString line;        // what the other reading says, in a sentence; "" while nothing is to be said
    QString faults; // whose status did not come, and what is not known for it, in a sentence; "" for none

    const car_status& shown() const { return standard_shown && was_read ? standard : own; }
};
second_status read_status_again(const diagnostic_results& results, const mac_toolies& toolies);

// What the engine's ECU, else the first that does, answers to PID 01 or 41.
struct told_monitors {
    QString ecu;
    monitor_status status;
};
told_monitors engine_monitors(const answer& kept, int pid, const mac_toolies& toolies);

} // namespace brivant
