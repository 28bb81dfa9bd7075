#pragma once

#include <QList>
#include <QString>

namespace brivant {

// The round moments that an axis shows between its ends, in milliseconds.
struct time_axis {
    QList<double> moments; // ascending; empty when the ends have no range
    int decimals = 0;      // of a second

    // At most about `wanted` moments, on whole steps of seconds, minutes or hours as a clock has them.
    static time_axis between(double from, double to, int wanted);
};

// A time as it is said: "0:07", "12:34.5", "1:02:03". Cut, not rounded: what is not over is not told.
QString clock_text(double ms, int decimals = 0);

} // namespace brivant
