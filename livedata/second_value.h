#pragma once

#include "livedata/live_results.h"
#include "toolkit/mac_toolies.h"

namespace brivant {

// The value of a sample's body ("410C1AF8") in the reading that the preference "BV_standard_reading" chooses.
// What is not decoded by the standard is the program's own in either.
struct second_value {
    QString text;  // as it is shown
    QString other; // what the other reading says, "" where both say the same
};
second_value read_value(const QString& body, const mac_toolies& toolies, const QStringList& sweep = {});
// The numbers that need their whole sweep are worked out of it: see obd/readings/sweep_values.h.
// True when there are such columns.
bool work_out_sweeps(live_results& results, const mac_toolies& toolies);
// Text and number of a row whose latest body is this one.
void read_row(live_results& results, int column, const QString& body, const mac_toolies& toolies);
// The same with the bodies of its sweep.
void read_row_of(live_results& results, int column, const QStringList& bodies, const mac_toolies& toolies);
// Reads what a run has kept once more, after that preference was changed. The car is not asked.
void read_again(live_results& results, const mac_toolies& toolies);

} // namespace brivant
