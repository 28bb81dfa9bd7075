#pragma once

#include "livedata/sampling_talk.h"

namespace brivant {

// The fuel economy, which no car is asked for: its columns are worked out of the others of the sweep, speed
// and air flow; of a car that tells its fuel rate alone (PID 5E) by that. `bodies`: those of the sweep,
// completed here.
void take_economy(sampling_talk& car, QStringList& bodies);

// Miles a US gallon from speed (km/h) and air flow (g/s); `by_density`: with the fuel's density.
double compute_MPG(double speed, double air_flow, bool by_density);

} // namespace brivant
