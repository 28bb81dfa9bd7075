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
// get_pid_name without the leading characters.
QString get_pid_name_with_pid(const QString& pid, const text_resources& lists);

} // namespace brivant
