#pragma once

#include "formats/run_values.h"

namespace brivant {

struct position_fix {
    geo_position where;
    qint64 told_us = 0; // by the clock of the timers, when it was told
};

// Who knows where the car is.
class position_source {
public:
    position_source() = default;
    virtual ~position_source() = default;
    Q_DISABLE_COPY_MOVE(position_source)

    // A run begins, and ends: between the two it is asked.
    virtual void begin() = 0;
    virtual void end() = 0;
    // Whether there is somebody to ask, with a fix or without.
    virtual bool is_there() const = 0;
    // Nothing where none is known, or the latest is old.
    virtual std::optional<position_fix> latest() const = 0;
    // Whether a position is stored, and why not: a line for the person.
    virtual QString about() const = 0;
};

} // namespace brivant
