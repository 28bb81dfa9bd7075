#pragma once

#include "obd/readings/sampled_value.h"

namespace brivant {

// The numbers of a sweep in one of the two readings. By the standard some need the other items of the sweep:
// the values that the car itself scales (by PID 4F or 50), and the program's own fuel economy (E4) and boost
// (E5), which are worked out of the quantities of physics. `items`: the bodies of one sweep, in the order of
// its columns.

QList<double> sampled_numbers(const QStringList& items, const sample_reading& reading,
                              const text_resources& lists);
// True when the other reading says something else of this item of the sweep.
bool readings_differ_in(const QStringList& items, const QString& item, const sample_reading& reading,
                        const text_resources& lists);
// By what the sweep's items of PIDs 4F and 50 tell.
full_scales scales_of_sweep(const QStringList& items);
// The columns, by their PIDs, that need the other items.
QList<int> columns_of_sweep(const QStringList& pids);

// "11.63 km/l, 8.60 l/100 km" or "27.36 mpg (US)", of the speed and the fuel rate (PID 5E), else the air flow
// (10) by the kind of fuel (51). "~" without them, for a fuel whose ratio and density are not known here, and
// while no fuel is burnt.
QString economy_by_physics(const QStringList& items, unit_system units);
// The manifold pressure of a body "41E58C" over the outside pressure (PID 33; 101 kPa without it): "39 kPa".
QString boost_by_physics(const QStringList& items, unit_system units);

} // namespace brivant
