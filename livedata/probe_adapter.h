#pragma once

#include "livedata/sampling_talk.h"

namespace brivant {

// Finds out what the adapter can do, before its first fast run: each ability by its effect on the answers of
// the car and on when they come. What it was found to be is kept (sampling_talk::keep_passport); nothing is
// where the car hardly answers. The adapter is left as it was.
talk probe_adapter(sampling_talk& car);

} // namespace brivant
