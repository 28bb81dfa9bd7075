#pragma once

#include "formats/run_values.h"

#include <QByteArray>

namespace brivant {

// A line of gpsd: an object of JSON that names its class. Only its reports of time, position and velocity
// ("TPV") matter here.
struct gpsd_line {
    enum class kind { broken, other, no_fix, fix };

    kind what = kind::broken;
    QString device{}; // that reports
    QString time{};   // of the fix, as the receiver told it; "" where it did not
    geo_position where{};

    // Values that cannot be are left out; without its place a fix is none.
    static gpsd_line of(const QByteArray& text);
};

} // namespace brivant
