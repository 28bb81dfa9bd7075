#pragma once

namespace brivant {

// How many data bytes answer a PID of service 01 (SAE J1979, ISO 15031-5), for those that have one length in
// every car; 0 for the others and for unknown ones.
int pid_length(int pid);

} // namespace brivant
