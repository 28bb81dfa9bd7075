#pragma once

#include "operations/car_talk.h"

namespace brivant {

// What a run has changed at the adapter is as it was before. One that does not answer to it is set up from a
// reset by the next operation.
talk put_back_settings(car_talk& car);

} // namespace brivant
