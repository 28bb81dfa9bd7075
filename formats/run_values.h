#pragma once

#include "base/shared_types.h"

#include <QList>
#include <QString>
#include <optional>
#include <vector>

namespace brivant {

// A sampling run as the log formats take and give it: a head, then its sweeps and marks one after the other.
// Nothing here knows where a run comes from.

struct run_column {
    QString pid; // "0C", "1234", or a pseudo PID ("E4")
    QString name;
    QString unit; // "" without one

    bool operator==(const run_column&) const = default;
};

struct run_head {
    qint64 start_ms = 0; // UTC, since 1970
    QString vehicle;
    bool by_standard = false; // whose reading the values are: that of SAE J1979, or the program's own
    unit_system units = unit_system::metric;
    QString version; // of the program that recorded it
    QList<run_column> columns;
    bool has_offsets = false; // of old runs only the sweeps have a time
    bool has_positions = false;

    bool operator==(const run_head&) const = default;
};

// Where a satellite receiver told to be: WGS 84, in degrees, metres and metres per second.
struct geo_position {
    double latitude = 0;
    double longitude = 0;
    std::optional<double> altitude = std::nullopt; // above mean sea level
    std::optional<double> speed = std::nullopt;
    std::optional<double> track = std::nullopt; // degrees from true north, clockwise
    std::optional<double> error = std::nullopt; // its own estimate, horizontal
    double offset_ms = 0; // from the sweep's start to when it was told, below 0 before; sweeps may share one

    bool operator==(const geo_position&) const = default;
};

struct timed_sweep {
    double ms = 0;                             // from the start of the run to that of the sweep
    std::vector<std::optional<double>> values; // one a column; none is a gap
    std::vector<double> offsets_ms;            // one a column, from the sweep's start to the sample; or empty
    std::optional<geo_position> position;

    bool operator==(const timed_sweep&) const = default;
};

// A person's word at a moment of the run.
struct timed_mark {
    double ms = 0;
    QString text;

    bool operator==(const timed_mark&) const = default;
};

} // namespace brivant
