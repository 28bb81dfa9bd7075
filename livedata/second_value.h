#pragma once

#include "obd/toolkit/mac_toolies.h"

// The value of a sample's body ("410C1AF8") in the reading that the preference "BV_standard_reading" chooses.
// What the standard does not define, such as computed values, is the program's own in either.
struct second_value {
    QString text;  // as it is shown
    QString other; // what the other reading says, "" where both say the same
};
second_value read_value(const QString& body, const mac_toolies& toolies);
// Its number, for charts and gauges: by the standard the first quantity of the PID. NaN when there is none.
double number_of_value(const QString& body, const mac_toolies& toolies);
