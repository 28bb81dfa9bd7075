#pragma once

#include "livedata/live_results.h"
#include "toolkit/mac_toolies.h"

namespace brivant {

// The value of a sample's body ("410C1AF8") in the reading that the preference "BV_standard_reading" chooses.
// What the standard does not define, such as computed values, is the program's own in either.
struct second_value {
    QString text;  // as it is shown
    QString other; // what the other reading says, "" where both say the same
};
second_value read_value(const QString& body, const mac_toolies& toolies);
// Reads what a run has kept once more, after that preference was changed. The car is not asked.
void read_again(live_results& results, const mac_toolies& toolies);

} // namespace brivant
