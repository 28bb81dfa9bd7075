#pragma once

#include "operations/car_talk.h"

namespace brivant {

// The adapter initialisation that runs before the first operation on a link: reset, echo off, identification,
// protocol, headers, the supported PIDs of every ECU.
talk connect_2_interface(car_talk& car);

} // namespace brivant
