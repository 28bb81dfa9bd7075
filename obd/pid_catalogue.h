#pragma once

#include "base/shared_types.h"

namespace brivant {

class text_resources;

// What the views show about a mode 01 PID beside its value. `pid`: hex digits ("0C"); E1 to E8 are the
// program's own (E1 distance, E2 power, E3 torque, E4 fuel economy, E5 boost, E8 a percentage). Units and
// ranges belong to the text that translateResponse gives.

// "N/A" for a PID without a unit.
QString get_units(const QString& pid, unit_system units);

// The end of the gauge's range; 0 for a PID without one.
double get_PID_min_max(const QString& pid, bool get_max, unit_system units);

// The PID's name from the lists of names, with or without the three characters that lead each line ("0C ").
// "N/A" when the list has no such line; "NOT FOUND" above PID 5F.
QString get_pid_name(const QString& pid, bool with_prefix, const text_resources& lists);
// The same up to PID BF; "N/A" above.
QString l_get_pid_name(const QString& pid, bool with_prefix, const text_resources& lists);

// How the PIDs 14-1B, 24-2B and 34-3B are shared out among the banks: four sensors each of banks 1 and 2 (a
// car with PID 13), or two each of banks 1 to 4 (one with PID 1D).
enum class o2_banks { two, four };
o2_banks o2_banks_of(const obd_groups& available);
// Bank and sensor of such a PID, "B2S1"; "" for another PID.
QString o2_sensor_of(const QString& pid, o2_banks banks);

// The name that is shown: get_pid_name without the leading characters, and a name for the PIDs above 5F too.
QString get_pid_name_with_pid(const QString& pid, const text_resources& lists,
                              o2_banks banks = o2_banks::two);

} // namespace brivant
