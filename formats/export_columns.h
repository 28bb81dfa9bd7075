#pragma once

#include "formats/run_values.h"

namespace brivant {

// The columns of numbers that a table of sweeps has behind its time: the values, the position where the run
// has one, and the offsets of the samples, last, so that a reader that takes the first column of a name takes
// a value.
struct export_column {
    enum class kind { value, latitude, longitude, altitude, speed, track, error, position_offset, offset };

    kind what = kind::value;
    qsizetype of = 0; // the run's column, of values and offsets
    QString name;
    QString unit;
};

QList<export_column> export_columns(const run_head& head);
// Nothing where the sweep has no finite number for it.
std::optional<double> cell_of(const timed_sweep& sweep, const export_column& column);

} // namespace brivant
