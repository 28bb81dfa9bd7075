#pragma once

#include "diagnostics/diagnostic_results.h"

namespace brivant {

// What of a request was refused, damaged or not answered, a sentence each: "7E8: refused by the ECU: busy
// (7F 03 21)". Empty when all is well. That nobody answers ("NO DATA") is a fault only where the car has to:
// a test of service 06 that it has announced, the values of a frame whose code it has told, the codes on CAN.
QStringList faults_of(const answer& one);

// The row that stands in the place of a list's rows when its answer holds faults and no code.
words_row not_read(const QStringList& faults);

} // namespace brivant
