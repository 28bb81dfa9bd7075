#pragma once

#include "livedata/sampling_talk.h"

namespace brivant {

// How many times as many values a second a fast run of the same set would give, by the adapter's passport,
// or on CAN by how long the requests of the present run take; nothing while that is not known, or in a fast
// run. It is an estimate on the safe side.
std::optional<double> fast_gain(const sampling_talk& car);
// Where it is worth telling: a sentence, else "".
QString fast_gain_sentence(const sampling_talk& car);

} // namespace brivant
