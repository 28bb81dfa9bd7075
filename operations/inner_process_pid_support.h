#pragma once

#include "operations/car_talk.h"

namespace brivant {

// The supported-PID loop: asks a service ("01", "06") for its maps of supported PIDs (00, 20, 40 ... as far
// as they are announced, SAE J1979) and lists them by ECU in `found`. For service 01, which tells what car
// this is, it also asks the person when the car answers otherwise than the one stored; its list is the
// available-PID list.
talk inner_process_pid_support(car_talk& car, QString service, obd_groups& found);

} // namespace brivant
