#pragma once

#include "obd/pid_catalogue.h"
#include "obd/standard_reading/pid_values.h"

#include <QStringList>

namespace brivant {

class text_resources;

// The numbers that charts, gauges, previews and exports take from a sampled reply ("410C1AF8"), in one of two
// readings: the program's own, or that of SAE J1979.
struct sample_reading {
    unit_system units = unit_system::imperial;
    bool by_standard = false;
    o2_banks sensors = o2_banks::two; // how columns of oxygen sensors are named
    full_scales scales = {};          // by which the car itself scales, by the standard
};

// NaN when the reply carries no number. By the standard it is the PID's first quantity. What the program
// works out itself (PIDs E1 to E8) is its own in either reading, but see sweep_values.h for E4 and E5.
double sampled_number(const QString& reply, const sample_reading& reading, const text_resources& lists);
// The unit of that number; "N/A" without one.
QString sampled_unit(const QString& pid, const sample_reading& reading);
// Name and unit of a column: "Engine RPM (RPM)", by the standard "Engine RPM (rpm by SAE J1979)"; "N/A (N/A)"
// for no PID.
QString sampled_heading(const QString& pid, const sample_reading& reading, const text_resources& lists);
// True when the standard's number or unit says something else than the program's own. The reading chosen does
// not matter.
bool readings_differ(const QString& reply, const sample_reading& reading, const text_resources& lists);

// The PID of a sampled reply; "" for an item that is none ("~", "-1", "NODATA").
QString sampled_pid(const QString& item);
// Fills in the PIDs that a stored line tells of columns that no line before it told. True when all are known.
bool tell_columns(QStringList& pids, const QStringList& items);
// The items of a stored line, each in the column of its PID; "~" where there is none. A PID without a column
// is left out.
QStringList in_columns(const QStringList& pids, const QStringList& items);

} // namespace brivant
